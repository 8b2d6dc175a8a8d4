#include "host/core/loop/cycle_counter.h"

#include <algorithm>

namespace velko
{

void CycleCounter::load(const std::vector<PlannedRequest> &plan)
{
    m_requests.clear();
    m_ended.clear();
    for (const PlannedRequest &request : plan)
        m_requests.push_back(keyOf(request.var));
}

bool CycleCounter::ended(const RW_VAR &request, const StationStates &stations)
{
    m_ended.insert(keyOf(request));
    const bool isCycle = std::all_of(m_requests.begin(), m_requests.end(), [&](const Key &key) {
        return m_ended.count(key) > 0 || !stations.isOnline(std::get<0>(key));
    });
    if (isCycle)
        m_ended.clear();
    return isCycle;
}

CycleCounter::Key CycleCounter::keyOf(const RW_VAR &request)
{
    return {request.station, request.varKind, request.addr, request.count};
}

} // namespace velko
