// What the program's exit status says. Stated in --help and in the tool's page.
#pragma once

#include "host/core/events/event.h"

namespace velko
{

enum ExitStatus {
    EXIT_GOOD = 0,
    EXIT_PROGRAM = 1, ///< the driver's file, the output or something else of the machine
    EXIT_USAGE = 2,
    EXIT_FILE = 3,
    EXIT_PORT = 4,
    EXIT_SILENT = 5, ///< a station did not answer, or none of its answers was whole
    EXIT_REFUSED = 6 ///< a station answered with an exception, or a value was refused
};

/// What the program's exit status says of a failure. EXIT_GOOD for GOOD.
int exitStatusOf(Verdict::Kind kind);

/// Of the news of a write.
int exitStatusOf(const Event &write);

} // namespace velko
