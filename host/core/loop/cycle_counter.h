// When every request of the cyclic list has had its turn. ComInfo's cycleDone cannot tell: on a line
// that loses an answer now and then it may never come true.
#pragma once

#include "host/core/plan/request_planner.h"
#include "host/core/stations/station_watch.h"

#include <set>
#include <tuple>

namespace velko
{

class CycleCounter
{
public:
    /// Begins anew with these requests.
    void load(const std::vector<PlannedRequest> &plan);

    /// A request was answered or given up. True when that ends a pass: all others to stations that
    /// are on had their turn. The next pass begins then.
    bool ended(const RW_VAR &request, const StationWatch &stations);

private:
    using Key = std::tuple<int, int, int, int>; // station, area, register, count

    static Key keyOf(const RW_VAR &request);

    std::vector<Key> m_requests;
    std::set<Key> m_ended;
};

} // namespace velko
