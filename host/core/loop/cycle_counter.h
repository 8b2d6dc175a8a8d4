// Counts cycles. ComInfo::cycleDone may never become 1 on a line that sometimes loses a response.
#pragma once

#include "host/core/plan/request_planner.h"
#include "host/core/stations/station_states.h"
#include "velko_modbus_rtu.h"

#include <set>
#include <tuple>
#include <vector>

namespace velko
{

/// Used on the communication thread.
class CycleCounter
{
public:
    /// Starts a cycle of these requests.
    void load(const std::vector<PlannedRequest> &plan);

    /// Notes that a request succeeded or was given up. Returns true if that completes the cycle:
    /// all other requests to online stations have ended as well. The next cycle starts then.
    bool ended(const RW_VAR &request, const StationStates &stations);

private:
    using Key = std::tuple<int, int, int, int>; // station, area, register, count

    static Key keyOf(const RW_VAR &request);

    std::vector<Key> m_requests;
    std::set<Key> m_ended;
};

} // namespace velko
