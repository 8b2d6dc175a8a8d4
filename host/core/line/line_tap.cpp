#include "host/core/line/line_tap.h"

namespace velko
{

void LineTaps::sent(const QByteArray &frame, Clock::time_point time) const
{
    for (LineTap *const tap : taps)
        tap->sent(link, frame, time);
}

void LineTaps::received(const QByteArray &reply, Clock::time_point time) const
{
    for (LineTap *const tap : taps)
        if (!reply.isEmpty())
            tap->received(link, reply, time);
}

void LineTaps::dropped(const QByteArray &bytes, Clock::time_point time) const
{
    for (LineTap *const tap : taps)
        if (!bytes.isEmpty())
            tap->dropped(link, bytes, time);
}

void LineTaps::judged(const std::string &verdict) const
{
    for (LineTap *const tap : taps)
        tap->judged(link, verdict);
}

} // namespace velko
