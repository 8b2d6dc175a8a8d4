// The result of one exchange.
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
        NOT_SENT ///< no frame was sent
    };

    Verdict() = default;
    explicit Verdict(Kind itsKind, std::string itsText = std::string());

    Kind kind = NOT_SENT;
    int exception = 0;    ///< exception code, for EXCEPTION
    bool repeats = false; ///< it failed, and the driver will repeat the frame
    std::string text;     ///< "good", "no response", "exception 2 (illegal data address)", ...
};

/// `resultCode`: one of RESULT_..., as DataCom returned it for the exchange. The reason of a
/// failure is found in the response.
Verdict verdictOn(const Protocol &request, const Exchange &exchange, int resultCode);

} // namespace velko
