// Takes stations that do not respond offline, has them probed, and takes them back. So the line
// waits for their response timeouts only once.
#pragma once

#include "host/core/driver/driver_link.h"
#include "host/core/events/reporter.h"
#include "host/core/events/verdict.h"
#include "host/core/links/link.h"
#include "host/core/loop/cycle_counter.h"
#include "host/core/plan/request_planner.h"
#include "host/core/stations/probe_schedule.h"
#include "host/core/stations/station_states.h"
#include "host/core/trust/open_requests.h"
#include "velko_modbus_rtu.h"

#include <optional>
#include <set>
#include <vector>

namespace velko
{

/// Used on the communication thread.
class StationWatch
{
public:
    /// The arguments are the caller's and outlive this object.
    StationWatch(const DriverLink &driver, StationStates &states, const OpenRequests &open,
                 const Reporter &reporter);

    /// Replaces the stations and requests. A probe of every offline station is due at once. `link` is
    /// the caller's and must not change or end before the next call.
    void load(const Link &link, const std::vector<PlannedRequest> &plan);
    /// True if a variable of the link belongs to the station.
    bool isInLink(int station) const;
    /// True if a cyclic request to an online station exists.
    bool isAnyPolled() const;

    /// Called before each turn. Takes stations offline whose writes in the driver's queue are given
    /// up, and returns them.
    std::vector<int> endClearing();

    /// A probe of every offline station is due at once.
    void restartProbes() { m_schedule.restart(); }
    /// Returns the probe that is due; no value: none. Between two probes all cyclic requests to
    /// online stations are sent.
    std::optional<Probe> dueProbe();
    /// The probe has ended: it occupied the line from `begin` to now. If the station has answered,
    /// it is online.
    void probeEnded(const Probe &probe, Clock::time_point begin, bool isAnswered);
    /// Time to the next probe if nothing else is to be sent.
    milliseconds untilNextProbe() const;

    /// Called after each exchange of the driver's request, or of a check read that was not answered.
    /// Decides whether the station goes offline. `isQuiet`: no byte was received.
    void exchangeEnded(const RW_VAR &request, const Verdict &verdict, bool isQuiet);

    /// Stations have sent whole frames. For those that are offline, a probe is due at once.
    void heard(const std::set<int> &stations);

    /// Called when a request has succeeded or is given up.
    void requestEnded(const RW_VAR &request);

private:
    bool isAnyOnline() const;

    const DriverLink &m_driver;
    StationStates &m_states;
    const OpenRequests &m_open;
    const Reporter &m_reporter;
    const Link *m_link = nullptr;
    std::vector<int> m_stations; // of the link, in ascending order
    std::vector<int> m_polled;   // with cyclic requests
    ProbeSchedule m_schedule;
    CycleCounter m_sinceProbe;
    bool m_hasReceived = false; // any byte since the current request began
};

} // namespace velko
