#include "host/core/status/register_states.h"

namespace velko
{

namespace
{

int rank(const RegisterState &state)
{
    if (!state.lastGood)
        return 0;
    return state.lastAttempt.kind == Verdict::GOOD ? 2 : 1;
}

bool isWorse(const RegisterState &one, const RegisterState &other)
{
    if (rank(one) != rank(other))
        return rank(one) < rank(other);
    return one.lastGood < other.lastGood;
}

} // namespace

void RegisterStates::good(int station, const RegisterSpan &span)
{
    const RegisterState state{Clock::now(), Verdict(Verdict::GOOD)};
    for (int number = span.first; number <= span.last; ++number)
        m_states[{station, span.area, number}] = state;
}

void RegisterStates::failed(int station, const RegisterSpan &span, const Verdict &verdict)
{
    for (int number = span.first; number <= span.last; ++number)
        m_states[{station, span.area, number}].lastAttempt = verdict;
}

void RegisterStates::writeBegins(int station, const RegisterSpan &span)
{
    for (int number = span.first; number <= span.last; ++number)
        ++m_writes[{station, span.area, number}];
}

void RegisterStates::writeEnds(int station, const RegisterSpan &span)
{
    for (int number = span.first; number <= span.last; ++number) {
        const auto place = m_writes.find({station, span.area, number});
        if (place != m_writes.end() && --place->second == 0)
            m_writes.erase(place);
    }
}

bool RegisterStates::isWriting(const Variable &variable) const
{
    const RegisterSpan span = registersOf(variable);
    const auto next = m_writes.lower_bound({variable.station, span.area, span.first});
    return next != m_writes.end() && next->first <= Key{variable.station, span.area, span.last};
}

RegisterState RegisterStates::stateOf(const Variable &variable) const
{
    const RegisterSpan span = registersOf(variable);
    std::optional<RegisterState> worst;
    for (int number = span.first; number <= span.last; ++number) {
        const auto place = m_states.find({variable.station, span.area, number});
        const RegisterState state = place == m_states.end() ? RegisterState() : place->second;
        if (!worst || isWorse(state, *worst))
            worst = state;
    }
    return *worst;
}

} // namespace velko
