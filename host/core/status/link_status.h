// The state of a link for any thread: which values are fresh, what its stations answered, its port.
#pragma once

#include "host/core/events/verdict.h"
#include "host/core/line/line_times.h"
#include "host/core/line/serial_line.h"
#include "host/core/stations/station_counters.h"
#include "host/core/stations/station_states.h"
#include "host/core/status/register_states.h"
#include "host/core/variables/variable.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace velko
{

enum class Freshness { GOOD, STALE, NEVER_READ, STATION_OFFLINE };

/// "good", "stale", "never read", "station offline"
const char *nameOf(Freshness freshness);

struct ValueState {
    Freshness freshness = Freshness::NEVER_READ;
    /// Since the whole variable was read. None if it never was; there is no value then.
    std::optional<milliseconds> age;
    /// The latest attempt to read it: GOOD, the failure, or NOT_SENT if none was made.
    Verdict lastAttempt;
};

struct StationStatus {
    int station = 0;
    bool isOnline = true;
    int timesOffline = 0;
    Clock::duration timeOffline = {}; ///< in all, the present time included
    StationCounters counters;
};

class LinkStatus
{
public:
    /// `stations` outlives this.
    explicit LinkStatus(const StationStates &stations) : m_stationStates(stations) {}

    // --- The communication thread ---

    void setPort(bool isOpen, const std::string &text);
    void setStaleAfter(milliseconds age);
    /// Variables whose writes are queued: the store may show what the PLC does not have.
    void setWriting(const std::vector<Variable> &variables);
    void count(int station, const Verdict &verdict, const Exchange &exchange);
    void readEnded(int station, const RegisterSpan &span, const Verdict &verdict);
    void cycleEnded();

    // --- Any thread ---

    ValueState stateOf(const Variable &variable) const;
    /// Stations to which at least one frame was sent, in ascending order. Times run on while the port is
    /// disconnected.
    std::vector<StationStatus> stations() const;
    bool isOnline(int station) const { return m_stationStates.isOnline(station); }
    bool isPortOpen() const;
    /// The device, or why there is none.
    std::string portText() const;
    /// Cycles: every request to a station that is online was answered or given up.
    std::int64_t cycles() const;

private:
    // With the lock held.
    Freshness freshnessOf(const Variable &variable, const ValueState &state) const;
    bool isWriting(const Variable &variable) const;

    const StationStates &m_stationStates;

    mutable std::mutex m_mutex; // guards all below
    bool m_isPortOpen = false;
    std::string m_portText;
    milliseconds m_staleAfter = {};
    std::map<int, StationCounters> m_counters; // by station
    std::vector<Variable> m_writing;
    RegisterStates m_registers;
    std::int64_t m_cycles = 0;
};

} // namespace velko
