// The exit statuses of the program. --help and the manual list them as well.
#pragma once

#include "host/core/events/event.h"
#include "host/core/events/verdict.h"

namespace velko
{

enum ExitStatus {
    EXIT_GOOD = 0,
    EXIT_PROGRAM = 1, ///< the driver library file, the output or the system failed
    EXIT_USAGE = 2,
    EXIT_FILE = 3,
    EXIT_PORT = 4,
    EXIT_SILENT = 5, ///< a station did not respond, or its responses were damaged
    EXIT_REFUSED = 6 ///< a station sent an exception response, or a value was refused
};

/// Exit status for the result of an exchange.
int exitStatusOf(Verdict::Kind kind);

/// Exit status for a write event.
int exitStatusOf(const Event &write);

} // namespace velko
