// What a link reports besides values: results of writes, stations and the port.
#pragma once

#include "host/core/events/verdict.h"

#include <string>

namespace velko
{

struct Event {
    enum Kind { WRITE, STATION, PORT };

    enum State {
        WRITE_DONE,
        WRITE_FAILED,
        WRITE_QUEUED_AGAIN,
        WRITE_SUPERSEDED,
        WRITE_REFUSED,
        STATION_OFFLINE,
        STATION_ONLINE,
        PORT_OPEN,
        PORT_LOST,
        PORT_MISSING
    };

    State state = WRITE_DONE;
    std::string link;
    std::string name;   ///< the variable, the station's number or the device
    std::string value;  ///< of a write, as it was given
    std::string detail; ///< the reason, or what happens next
    /// Of a write that failed, or that was refused because of the line. GOOD if the write itself was
    /// the reason.
    Verdict::Kind cause = Verdict::GOOD;
    int write = 0; ///< number of the write, as LinkSession returned it
};

Event::Kind kindOf(Event::State state);

/// "done", "failed", "queued again", "offline" and so on: short, and stable for scripts.
const char *nameOf(Event::State state);

/// Receives a link's events on its communication thread. An implementation returns quickly.
class EventSink
{
public:
    virtual ~EventSink() = default;
    virtual void receive(const Event &event) = 0;
};

} // namespace velko
