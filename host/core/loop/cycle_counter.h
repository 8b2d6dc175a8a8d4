// Counts cycles. ComInfo::cycleDone may never become 1 on a line that sometimes loses a response.
#pragma once

#include "host/core/plan/request_planner.h"
#include "host/core/stations/station_states.h"
#include "velko_modbus_rtu.h"

#include <map>
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
    /// Starts another cycle of the same requests.
    void restart();

    /// Notes that a request succeeded or was given up. Other requests than those of the cycle do not
    /// count.
    void ended(const RW_VAR &request);

    /// True if all requests to online stations have ended.
    bool isComplete(const StationStates &stations) const;

private:
    using Key = std::tuple<int, int, int, int>; // station, area, register, count

    static Key keyOf(const RW_VAR &request);

    std::set<Key> m_requests;
    std::set<Key> m_waiting;     // those of m_requests that have not ended
    std::map<int, int> m_counts; // of m_waiting, by station
};

} // namespace velko
