// The result of one exchange, in words and for counting.
#pragma once

#include "host/core/line/serial_line.h"
#include "velko_modbus_rtu.h"

#include <string>

namespace velko
{

struct Verdict {
    enum Kind {
        GOOD,
        NO_REPLY,
        BAD_CRC,
        WRONG_LENGTH,
        EXCEPTION,
        COLLISION,
        PORT_GONE,
        NOT_SENT ///< nothing was tried
    };

    Verdict() = default;
    explicit Verdict(Kind itsKind, std::string itsText = std::string());

    Kind kind = NOT_SENT;
    int exception = 0;    ///< its code
    bool repeats = false; ///< failed, and the driver will ask for the frame again
    std::string text;     ///< "good", "no response", "exception 2 (illegal data address)", ...
};

/// `resultCode` is the driver's judgement of the exchange. Where it says no more than "failed", the
/// reason is read off the reply.
Verdict verdictOn(const Protocol &request, const Exchange &exchange, int resultCode);

} // namespace velko
