#include "host/core/line/line_tap.h"

namespace velko
{

void LineTaps::sent(const QByteArray &frame) const
{
    for (LineTap *const tap : taps)
        tap->sent(link, frame);
}

void LineTaps::received(const QByteArray &reply) const
{
    for (LineTap *const tap : taps)
        if (!reply.isEmpty())
            tap->received(link, reply);
}

void LineTaps::dropped(const QByteArray &bytes) const
{
    for (LineTap *const tap : taps)
        if (!bytes.isEmpty())
            tap->dropped(link, bytes);
}

void LineTaps::judged(const std::string &verdict) const
{
    for (LineTap *const tap : taps)
        tap->judged(link, verdict);
}

} // namespace velko
