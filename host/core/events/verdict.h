// What became of one exchange, in words and for counting.
#pragma once

#include "host/core/line/serial_line.h"
#include "velko_modbus_rtu.h"

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

    Kind kind = NOT_SENT;
    int exception = 0;    ///< its code
    bool repeats = false; ///< failed, and the driver will ask for the frame again
    std::string text;     ///< "good", "no answer", "exception 2 (illegal data address)", ...
};

/// True for a result of DataCom that means a good exchange.
bool isGood(int resultCode);

/// `resultCode` is the driver's judgement of the exchange. While it says no more than "failed", the
/// reason is read off the reply.
Verdict verdictOn(const Protocol &request, const Exchange &exchange, int resultCode);

} // namespace velko
