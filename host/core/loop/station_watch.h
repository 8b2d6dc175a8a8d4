// Takes stations that do not respond offline and probes them. So the line waits for their response
// timeouts only once.
#pragma once

#include "host/core/events/reporter.h"
#include "host/core/events/verdict.h"
#include "host/core/links/link.h"
#include "host/core/loop/driver_link.h"
#include "host/core/stations/station_states.h"
#include "host/core/variables/variable.h"
#include "velko_modbus_rtu.h"

#include <vector>

namespace velko
{

/// Used on the communication thread.
class StationWatch
{
public:
    /// `driver`, `states` and `reporter` are the caller's and outlive this object.
    StationWatch(DriverLink &driver, StationStates &states, const Reporter &reporter);

    /// Replaces the stations and variables. Every offline station is probed at once.
    void load(const Link &link);
    /// True if a variable of the link belongs to the station.
    bool isInLink(int station) const;

    /// Called before each turn. Takes stations offline whose queued writes are given up. If
    /// `mayProbe`, enables one station whose probe is due.
    void beginTurn(bool mayProbe);

    /// Called after each exchange. Decides whether the station goes offline or returns online.
    /// `isQuiet`: no byte was received.
    void exchangeEnded(int station, const Verdict &verdict, bool isQuiet);

    /// Called when a request has succeeded or is given up.
    void requestEnded(const RW_VAR &request);

private:
    void probe(int station);
    void probeEnded(int station, const Verdict &verdict);
    void watchSilence(int station, const Verdict &verdict);

    DriverLink &m_driver;
    StationStates &m_states;
    const Reporter &m_reporter;
    std::vector<int> m_stations; // of the link, in ascending order
    std::vector<Variable> m_variables;
    bool m_hasReceived = false; // any byte since the current request began
};

} // namespace velko
