// The states of the stations. Enables and disables the stations in the driver.
#pragma once

#include "host/core/line/line_times.h"
#include "host/core/loading/driver_library.h"

#include <map>
#include <mutex>
#include <vector>

namespace velko
{

/// Whether a station is online; how many times, and for how long in total, it was offline, with the
/// present absence.
struct StationPresence {
    bool isOnline = true;
    int timesOffline = 0;
    Clock::duration timeOffline = {};
};

class StationStates
{
public:
    enum State {
        ONLINE,
        CLEARING, ///< does not respond; its queued writes are given up unsent, then it is disabled
        OFFLINE
    };

    /// `driver` is the caller's and outlives this object.
    explicit StationStates(const DriverLibrary &driver) : m_driver(driver) {}

    // --- Only the communication thread ---

    /// ONLINE -> CLEARING. `queuedWrites`: number of writes to all stations in the driver's queue.
    void beginClearing(int station, int queuedWrites);
    /// A write of any station has left the driver's queue.
    void writeEnded();
    /// CLEARING -> OFFLINE for each station without a queued write. The driver takes writes in
    /// order, so that is the case when as many writes have ended as were queued, or when the queue
    /// is empty. Returns these stations.
    std::vector<int> endClearing(bool isQueueEmpty);

    /// Returns the OFFLINE stations, in ascending order.
    std::vector<int> offlineStations() const;

    /// OFFLINE -> ONLINE. Returns how long the station was offline.
    Clock::duration takeOnline(int station);

    /// Makes all other stations ONLINE, because they have no variables any more. `stations` is in
    /// ascending order.
    void keepOnly(const std::vector<int> &stations);

    // --- Any thread ---

    State state(int station) const;
    bool isOnline(int station) const { return state(station) == ONLINE; }
    StationPresence presenceOf(int station) const;

private:
    struct Entry {
        State state = ONLINE;
        Clock::time_point since; // when it stopped responding
        int writesLeft = 0;      // in the driver's queue, while CLEARING
    };
    using Entries = std::map<int, Entry>;

    // With the lock held.
    Entries::iterator remove(Entries::iterator place);

    const DriverLibrary &m_driver;

    mutable std::mutex m_mutex;            // guards all below
    Entries m_entries;                     // stations that are not ONLINE
    std::map<int, StationPresence> m_past; // without the present absence
};

} // namespace velko
