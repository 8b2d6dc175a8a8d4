#include "host/core/status/register_states.h"

namespace velko
{

namespace
{

int rank(const RegisterState &state)
{
    return !state.lastGood ? 0 : state.refusal.kind != Verdict::GOOD ? 1 : 2;
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
    const RegisterState state{Clock::now(), {Verdict::GOOD, 0, false, std::string()}};
    for (int number = span.first; number <= span.last; ++number)
        m_states[{station, span.area, number}] = state;
}

void RegisterStates::refused(int station, const RegisterSpan &span, const Verdict &verdict)
{
    for (int number = span.first; number <= span.last; ++number)
        m_states[{station, span.area, number}].refusal = verdict;
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
