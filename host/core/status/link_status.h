// The state of a link for any thread: freshness of values, counters of stations, the port.
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

/// Returns "good", "stale", "never read" or "station offline".
const char *nameOf(Freshness freshness);

struct ValueState {
    Freshness freshness = Freshness::NEVER_READ;
    /// Time since the whole variable was read. No value if it was never read.
    std::optional<milliseconds> age;
    /// The latest attempt to read it: GOOD, the failure, or NOT_SENT if none was made.
    Verdict lastAttempt;
};

struct StationStatus {
    int station = 0;
    bool isOnline = true;
    int timesOffline = 0;
    Clock::duration timeOffline = {}; ///< in total, with the present absence
    StationCounters counters;
};

class LinkStatus
{
public:
    /// `stations` is the caller's and outlives this object.
    explicit LinkStatus(const StationStates &stations) : m_stationStates(stations) {}

    // --- Only the communication thread ---

    /// `text` as portText returns it.
    void setPort(bool isOpen, const std::string &text);
    void setStaleAfter(milliseconds age);
    /// A response is awaited. `isWrite`: its request belongs to a write.
    void setAwaited(int station, bool isWrite);
    /// A write of the variable is queued. Its value in the store may not be in the PLC yet.
    void writeBegins(const Variable &variable);
    /// The result of a write is known.
    void writeEnds(const Variable &variable);
    /// Counts a frame that was sent.
    void count(int station, const Verdict &verdict, const Exchange &exchange);
    /// Notes the result of a read of registers.
    void readEnded(int station, const RegisterSpan &span, const Verdict &verdict);
    /// Counts a completed cycle.
    void cycleEnded();

    // --- Any thread ---

    ValueState stateOf(const Variable &variable) const;
    /// Returns the stations to which at least one frame was sent, in ascending order. The times
    /// offline include those in which the port is disconnected.
    std::vector<StationStatus> stations() const;
    bool isOnline(int station) const { return m_stationStates.isOnline(station); }
    bool isPortOpen() const;
    /// The response that is awaited, or was last, for example "station 3 to answer a read". Empty if
    /// there was none.
    std::string awaitedText() const;
    /// The device, or the reason why no port is open.
    std::string portText() const;
    /// Number of completed cycles. In a cycle, every cyclic request to an online station succeeds
    /// or is given up.
    std::int64_t cycles() const;

private:
    // With the lock held.
    Freshness freshnessOf(const Variable &variable, const ValueState &state) const;

    const StationStates &m_stationStates;

    mutable std::mutex m_mutex; // guards all below
    bool m_isPortOpen = false;
    std::string m_portText;
    int m_awaitedStation = 0; // 0: none
    bool m_isWriteAwaited = false;
    milliseconds m_staleAfter = {};
    std::map<int, StationCounters> m_counters; // by station
    RegisterStates m_registers;
    std::int64_t m_cycles = 0;
};

} // namespace velko
