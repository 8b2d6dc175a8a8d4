// Events of a link: results of writes, and changes of stations and of the port.
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
    std::string link;   ///< name of the link
    std::string name;   ///< the variable, the station number or the device
    std::string value;  ///< of a write, as the user wrote it
    std::string detail; ///< the reason, or what happens next
    /// Why a write failed, or was refused because of the line. GOOD in all other cases, for example
    /// if a value is refused.
    Verdict::Kind cause = Verdict::GOOD;
    int write = 0; ///< number of the write, as LinkSession::write returned it; 0 for other events
};

Event::Kind kindOf(Event::State state);

/// Returns "done", "failed", "queued again", "offline" and so on. Scripts depend on these names.
const char *nameOf(Event::State state);

/// Receives events of a link.
class EventSink
{
public:
    virtual ~EventSink() = default;
    /// Called on the communication thread of the link. Must return quickly, and must not throw.
    virtual void receive(const Event &event) = 0;
};

} // namespace velko
