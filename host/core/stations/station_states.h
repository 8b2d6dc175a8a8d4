// Which stations are online: the one place that knows, for the communication loop and for every other
// thread. It also enables and disables them in the driver.
#pragma once

#include "host/core/line/line_times.h"
#include "host/core/loading/driver_library.h"
#include "host/core/stations/growing_pause.h"

#include <map>
#include <mutex>
#include <optional>
#include <vector>

namespace velko
{

/// How often, and for how long in all, a station was offline. The present time offline counts.
struct StationAbsence {
    int times = 0;
    Clock::duration time = {};
};

class StationStates
{
public:
    enum State {
        ONLINE,
        CLEARING, ///< silent; its queued writes are given up unsent before it is disabled
        OFFLINE,
        PROBING ///< enabled for one exchange
    };

    /// The driver outlives this.
    explicit StationStates(const DriverLibrary &driver) : m_driver(driver) {}

    // --- The communication thread ---

    /// ONLINE -> CLEARING. `queuedWrites`: all writes in the driver's queue, of every station.
    void beginClearing(int station, int queuedWrites);
    /// A write of any station has left the driver's queue.
    void writeEnded();
    /// CLEARING -> OFFLINE for each station without a queued write: as many writes have ended as were
    /// queued, and the driver takes them in order; or the queue is empty. The first probe is due.
    void endClearing(bool isQueueEmpty);

    /// OFFLINE -> PROBING for one station whose probe is due; none if there is none.
    std::optional<int> beginProbe();
    /// PROBING -> OFFLINE, with a longer pause.
    void probeFailed(int station);
    /// PROBING -> ONLINE. Returns how long the station was offline.
    Clock::duration probeSucceeded(int station);
    /// PROBING -> OFFLINE for all, with the next probes due: what was under way was given up.
    void restartProbes();

    /// All stations but these become ONLINE: they are no longer asked. `stations` is in ascending order.
    void keepOnly(const std::vector<int> &stations);

    // --- Any thread ---

    State state(int station) const;
    bool isOnline(int station) const { return state(station) == ONLINE; }
    StationAbsence absenceOf(int station) const;

private:
    struct Entry {
        State state = ONLINE;
        Clock::time_point since; // offline
        Clock::time_point nextProbe;
        GrowingPause pause;
        int writesLeft = 0; // in the driver's queue, while CLEARING
    };
    using Entries = std::map<int, Entry>;

    // With the lock held.
    void takeOffline(Entries::value_type &place);
    Entries::iterator takeOnline(Entries::iterator place);

    const DriverLibrary &m_driver;

    mutable std::mutex m_mutex;               // guards all below
    Entries m_entries;                        // stations that are not ONLINE
    std::map<int, StationAbsence> m_absences; // without the present one
};

} // namespace velko
