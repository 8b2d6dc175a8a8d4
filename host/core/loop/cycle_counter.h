// Counts cycles: every request of the cyclic list has had its turn. ComInfo's cycleDone may never become
// 1 on a line that loses a response now and then.
#pragma once

#include "host/core/plan/request_planner.h"
#include "host/core/stations/station_states.h"
#include "velko_modbus_rtu.h"

#include <set>
#include <tuple>
#include <vector>

namespace velko
{

class CycleCounter
{
public:
    /// Begins a cycle of these requests.
    void load(const std::vector<PlannedRequest> &plan);

    /// A request was answered or given up. True if that ends the cycle: all others to stations that are
    /// online have had their turn. The next cycle begins then.
    bool ended(const RW_VAR &request, const StationStates &stations);

private:
    using Key = std::tuple<int, int, int, int>; // station, area, register, count

    static Key keyOf(const RW_VAR &request);

    std::vector<Key> m_requests;
    std::set<Key> m_ended;
};

} // namespace velko
