// When an offline station is probed, and how long its response is awaited.
#pragma once

#include "host/core/line/line_times.h"
#include "host/core/stations/growing_pause.h"

#include <deque>
#include <map>
#include <optional>

namespace velko
{

struct Probe {
    int station;
    bool isFull; ///< the whole response timeout is awaited
    milliseconds responseTimeout;
};

/// Keeps probes to 5 % of the line's time in each minute while a station is online. A station that
/// answered before gets short probes, and a full one now and then; one that never answered gets full
/// probes, in what the short ones leave. Used by one thread.
class ProbeSchedule
{
public:
    /// How long the response of a station is awaited.
    struct Times {
        milliseconds timeout;                ///< at most
        std::optional<milliseconds> slowest; ///< longest response time; no value: it never answered
    };

    /// The station is probed from now on, or its times have changed.
    void set(int station, const Times &times);
    void remove(int station) { m_stations.erase(station); }
    /// A probe of the station is due at once.
    void hasten(int station);
    /// A probe of each station is due at once.
    void restart();

    /// Returns the probe that is due now. No value: none. `isAnyOnline`: a station is online.
    std::optional<Probe> due(bool isAnyOnline, Clock::time_point now) const;

    /// Returns when the next probe is due if no station is online.
    Clock::time_point nextUrgent() const;

    /// The probe has ended: it occupied the line from `begin` to `end`. Its time counts only if it
    /// was that of a station that is online.
    void ended(const Probe &probe, Clock::time_point begin, Clock::time_point end,
               bool isAnyOnline);

    bool isEmpty() const { return m_stations.empty(); }

private:
    using Seconds = std::chrono::duration<double>;

    struct Station {
        Times times;
        GrowingPause pause;
        Clock::time_point last;     // end of its latest probe
        Clock::time_point lastFull; // end of its latest full probe
        Clock::time_point due;
        int probes = 0; // since the latest full one
    };
    void spend(const Probe &probe, Clock::time_point begin, Clock::time_point end);

    struct Spent {
        Clock::time_point end;
        Clock::duration cost;
    };

    using Stations = std::map<int, Station>; // by number

    static bool wantsFull(const Station &station);
    static Probe fullProbe(const Stations::value_type &place);
    static Probe shortProbe(const Stations::value_type &place);
    std::optional<Probe> urgent() const;
    std::optional<Probe> dueFull(Clock::time_point now) const;
    std::optional<Probe> dueShort(Clock::time_point now) const;
    template <typename Condition>
    Stations::const_iterator earliest(Clock::time_point Station::*time,
                                      const Condition &isMeant) const;
    int answeredStations() const;
    Seconds shortInterval(Seconds cost) const;
    Seconds restForFullProbes() const;
    bool fits(const Probe &probe, Clock::time_point now) const;
    bool isFullOverdue(Clock::time_point now) const;

    Stations m_stations;
    std::deque<Spent> m_spent; // in the last minute, oldest first
    Clock::time_point m_lastBegin;
    Clock::time_point m_nextShort;
    Clock::time_point m_nextFull = Clock::now();
};

} // namespace velko
