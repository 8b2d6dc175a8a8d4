#include "host/core/plan/wanted_registers.h"

#include <algorithm>
#include <cstddef>

namespace velko
{

WantedRegisters::WantedRegisters(const Link &link)
{
    for (const Variable &variable : link.variables) {
        if (!variable.isRead())
            continue;
        const RegisterSpan span = registersOf(variable);
        m_runs[{variable.station, span.area}].push_back({span.first, span.last});
    }
    for (auto &[place, runs] : m_runs) {
        std::sort(runs.begin(), runs.end(),
                  [](const Run &one, const Run &other) { return one.first < other.first; });
        std::vector<Run> joined;
        for (const Run &run : runs) {
            if (joined.empty() || joined.back().last < run.first)
                joined.push_back(run);
            else
                joined.back().last = std::max(joined.back().last, run.last);
        }
        runs = std::move(joined);
    }
}

std::vector<bool> WantedRegisters::marksIn(int station, const RegisterSpan &range) const
{
    std::vector<bool> marks(static_cast<size_t>(range.last - range.first + 1));
    const auto place = m_runs.find({station, range.area});
    if (place == m_runs.end())
        return marks;
    const std::vector<Run> &runs = place->second;
    auto run =
        std::lower_bound(runs.begin(), runs.end(), range.first,
                         [](const Run &candidate, int number) { return candidate.last < number; });
    for (; run != runs.end() && run->first <= range.last; ++run)
        for (int i = std::max(run->first, range.first); i <= std::min(run->last, range.last); ++i)
            marks[static_cast<size_t>(i - range.first)] = true;
    return marks;
}

} // namespace velko
