#include "host/core/loop/cycle_counter.h"

#include <algorithm>

namespace velko
{

void CycleCounter::load(const std::vector<PlannedRequest> &plan)
{
    m_requests.clear();
    for (const PlannedRequest &request : plan)
        m_requests.insert(keyOf(request.var));
    restart();
}

void CycleCounter::restart()
{
    m_waiting = m_requests;
    m_counts.clear();
    for (const Key &key : m_requests)
        ++m_counts[std::get<0>(key)];
}

void CycleCounter::ended(const RW_VAR &request)
{
    if (m_waiting.erase(keyOf(request)) > 0)
        --m_counts[request.station];
}

bool CycleCounter::isComplete(const StationStates &stations) const
{
    return std::all_of(m_counts.begin(), m_counts.end(), [&](const auto &count) {
        return count.second == 0 || !stations.isOnline(count.first);
    });
}

CycleCounter::Key CycleCounter::keyOf(const RW_VAR &request)
{
    return {request.station, request.varKind, request.addr, request.count};
}

} // namespace velko
