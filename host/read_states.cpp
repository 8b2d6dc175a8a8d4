#include "host/read_states.h"

void ReadStates::note(const RW_VAR &request, const std::string &refusal)
{
    for (int i = 0; i < request.count; ++i) {
        const auto place = m_refusals.insert({{request.varKind, request.addr + i}, refusal}).first;
        if (!place->second.empty())
            place->second = refusal;
    }
}

std::string ReadStates::refusalOf(const RegisterSpan &span) const
{
    for (int number = span.first; number <= span.last; ++number) {
        const auto place = m_refusals.find({span.area, number});
        if (place == m_refusals.end())
            return "not asked for yet";
        if (!place->second.empty())
            return place->second;
    }
    return std::string();
}
