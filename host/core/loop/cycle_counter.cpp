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

bool CycleCounter::isComplete(const StationStates &stations) const
{
    return std::all_of(m_requests.begin(), m_requests.end(), [&](const Key &key) {
        return m_ended.count(key) > 0 || !stations.isOnline(std::get<0>(key));
    });
}

CycleCounter::Key CycleCounter::keyOf(const RW_VAR &request)
{
    return {request.station, request.varKind, request.addr, request.count};
}

} // namespace velko
