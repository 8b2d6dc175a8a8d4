// What a person wants to be told, besides values.
#pragma once

#include "host/core/events/verdict.h"

#include <string>

namespace velko
{

struct Event {
    enum Kind { WRITE, STATION, PORT };

    Kind kind = WRITE;
    std::string link;
    std::string name;                    ///< the variable, the station's number or the device
    std::string state;                   ///< see below
    std::string value;                   ///< of a write
    std::string detail;                  ///< the reason, or what happens now
    Verdict::Kind cause = Verdict::GOOD; ///< of a write that failed, or was refused for that
                                         ///< reason; GOOD where the write itself was the reason
};

// Event::state
const char *const WRITE_DONE = "done";
const char *const WRITE_FAILED = "failed";
const char *const WRITE_OFFERED_AGAIN = "offered again";
const char *const WRITE_SUPERSEDED = "superseded";
const char *const WRITE_REFUSED = "refused";
const char *const STATION_WENT_OFF = "off";
const char *const STATION_CAME_BACK = "back";
const char *const PORT_OPEN = "open";
const char *const PORT_LOST = "lost";
const char *const PORT_MISSING = "not there";

/// Told on the communication thread.
class EventSink
{
public:
    virtual ~EventSink() = default;
    virtual void tell(const Event &event) = 0;
};

} // namespace velko
