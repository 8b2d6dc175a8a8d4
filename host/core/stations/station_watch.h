// Which stations are spoken to. One that is silent costs its time-outs once; then it is switched off
// and probed now and then, while the others go on at full speed.
#pragma once

#include "host/core/line/line_times.h"
#include "host/core/stations/growing_pause.h"

#include <map>
#include <optional>
#include <vector>

namespace velko
{

class StationWatch
{
public:
    enum State {
        ON,
        CLEARING, ///< found silent; its queued writes are being given up unsent
        OFF,
        PROBING ///< enabled for one exchange
    };

    State state(int station) const;

    /// ON -> CLEARING. `queuedWrites`: all that the driver has queued, for whatever station.
    void silent(int station, int queuedWrites);
    /// A write of whatever station has left the driver's queue.
    void writeEnded();
    /// Those CLEARING for which nothing is queued any more: as many writes have ended as were queued,
    /// and the driver takes them in their order; or its queue is empty.
    std::vector<int> cleared(bool isQueueEmpty) const;
    /// CLEARING -> OFF, the first probe due at once; or PROBING -> OFF, the next one later.
    void off(int station);
    /// PROBING -> ON. Returns for how long it was not spoken to.
    Clock::duration on(int station);
    /// OFF -> PROBING, for a station that is due. None: nothing is due.
    std::optional<int> nextProbe();
    /// PROBING -> OFF for all, and the next probes are due at once: what was under way has been given
    /// up. Returns those that were PROBING.
    std::vector<int> restart();
    /// To ON, whatever it was: stations that are not in the plan any more.
    void forget(int station) { m_stations.erase(station); }

    /// All that are not ON.
    std::vector<int> notOn() const;

private:
    struct Station {
        State state;
        Clock::time_point since; // not spoken to
        Clock::time_point nextProbe;
        GrowingPause pause;
        int writesLeft; // in the driver's queue, while CLEARING
    };

    std::map<int, Station> m_stations; // those that are not ON
};

} // namespace velko
