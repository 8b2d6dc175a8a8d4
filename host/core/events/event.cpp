#include "host/core/events/event.h"

namespace velko
{

Event::Kind kindOf(Event::State state)
{
    if (state <= Event::WRITE_REFUSED)
        return Event::WRITE;
    return state <= Event::STATION_ONLINE ? Event::STATION : Event::PORT;
}

const char *nameOf(Event::State state)
{
    switch (state) {
    case Event::WRITE_DONE:
        return "done";
    case Event::WRITE_FAILED:
        return "failed";
    case Event::WRITE_QUEUED_AGAIN:
        return "queued again";
    case Event::WRITE_SUPERSEDED:
        return "superseded";
    case Event::WRITE_REFUSED:
        return "refused";
    case Event::STATION_OFFLINE:
        return "offline";
    case Event::STATION_ONLINE:
        return "online";
    case Event::PORT_OPEN:
        return "open";
    case Event::PORT_LOST:
        return "disconnected";
    case Event::PORT_MISSING:
        return "missing";
    }
    return "";
}

} // namespace velko
