#include "host/commands/exit_status.h"

namespace velko
{

int exitStatusOf(Verdict::Kind kind)
{
    if (kind == Verdict::GOOD)
        return EXIT_GOOD;
    if (kind == Verdict::PORT_GONE)
        return EXIT_PORT;
    return kind == Verdict::EXCEPTION ? EXIT_REFUSED : EXIT_SILENT;
}

int exitStatusOf(const Event &write)
{
    if (write.state == Event::WRITE_REFUSED && write.cause == Verdict::GOOD)
        return EXIT_REFUSED;
    const bool isBad = write.state == Event::WRITE_REFUSED || write.state == Event::WRITE_FAILED;
    return isBad ? exitStatusOf(write.cause) : EXIT_GOOD;
}

} // namespace velko
