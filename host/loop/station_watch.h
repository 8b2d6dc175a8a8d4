// Which stations are spoken to. One that is silent costs its time-outs once; then it is switched off
// and probed now and then, while the others go on at full speed.
#pragma once

#include "host/line/line_times.h"
#include "host/loop/growing_pause.h"

#include <map>
#include <optional>
#include <vector>

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

    /// ON -> CLEARING
    void silent(int station);
    /// CLEARING -> OFF, the first probe due at once; or PROBING -> OFF, the next one later.
    void off(int station);
    /// PROBING -> ON. Returns for how long it was not spoken to.
    Clock::duration on(int station);
    /// OFF -> PROBING, for a station that is due. None: nothing is due.
    std::optional<int> nextProbe();
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
    };

    std::map<int, Station> m_stations; // those that are not ON
};
