// Takes silent stations offline, so that a dead one costs its response timeouts once, and probes them.
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

/// Communication thread.
class StationWatch
{
public:
    /// All outlive the watch.
    StationWatch(DriverLink &driver, StationStates &states, const Reporter &reporter);

    /// Other stations and variables. Probes begin again.
    void load(const Link &link);
    bool isInLink(int station) const;

    /// Before each turn: takes stations offline whose queued writes have been given up and, if
    /// `mayProbe`, enables one whose probe is due.
    void beginTurn(bool mayProbe);

    /// An exchange with a station has ended. Decides whether the station is offline, or back online.
    void exchangeEnded(int station, const Verdict &verdict, bool isQuiet);

    /// The request of one or several exchanges has ended.
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
    bool m_hasReceived = false; // bytes came in one of the tries of the current request
};

} // namespace velko
