// How a link stands, for any thread to look at: which values are fresh, which stations answer, what
// the line did.
#pragma once

#include "host/core/stations/station_counters.h"
#include "host/core/stations/station_watch.h"
#include "host/core/status/register_states.h"

#include <mutex>

namespace velko
{

enum class Freshness { GOOD, STALE, NEVER_READ, STATION_OFF };

/// "good", "stale", "never read", "station off"
const char *nameOf(Freshness freshness);

struct ValueState {
    Freshness freshness = Freshness::NEVER_READ;
    /// Since the variable was read whole; none when it never was, and there is no value then.
    std::optional<milliseconds> age;
    Verdict
        refusal; ///< of the latest attempt; GOOD when that was good, NOT_SENT when none was made
};

struct StationStatus {
    int station = 0;
    bool isOn = true;
    int timesOff = 0;
    Clock::duration timeOff = {}; ///< in all, the present one included
    StationCounters counters;
};

class LinkStatus
{
public:
    // --- The communication thread ---

    void setPort(bool isOpen, const std::string &text);
    void setOn(int station, bool isOn);
    void setStaleAfter(milliseconds age);
    /// Whose fate is not known yet: the store may show what the PLC does not have.
    void setWriting(const std::vector<Variable> &variables);
    void count(int station, const Verdict &verdict, const Exchange &exchange);
    void readEnded(int station, const RegisterSpan &span, const Verdict &verdict);
    void cycleEnded();

    // --- Any thread ---

    ValueState stateOf(const Variable &variable) const;
    /// Those that a frame was sent to, ascending. Times go on while the port is gone.
    std::vector<StationStatus> stations() const;
    bool isOn(int station) const;
    bool isPortOpen() const;
    /// The device, or why there is none.
    std::string portText() const;
    /// Passes of the cyclic list: every request to a station that is not off was answered or given
    /// up.
    std::int64_t cycles() const;

private:
    bool isWriting(const Variable &variable) const; // with the lock held

    mutable std::mutex m_mutex; // guards all below
    bool m_isPortOpen = false;
    std::string m_portText;
    milliseconds m_staleAfter = {};
    std::map<int, StationStatus> m_stations; // timeOff without the present one
    std::map<int, Clock::time_point> m_offSince;
    std::vector<Variable> m_writing;
    RegisterStates m_registers;
    std::int64_t m_cycles = 0;
};

} // namespace velko
