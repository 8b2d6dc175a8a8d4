#include "host/views/trace_tap.h"

#include "host/core/text/hex.h"

#include <QDateTime>

namespace velko
{

namespace
{

const long long MICROSECONDS = 1000000; // of a second

} // namespace

void TraceTap::sent(const std::string &link, const QByteArray &frame, Clock::time_point time)
{
    print(link, "->", hexText(frame), time);
}

void TraceTap::received(const std::string &link, const QByteArray &reply, Clock::time_point time)
{
    print(link, "<-", hexText(reply), time);
}

void TraceTap::dropped(const std::string &link, const QByteArray &bytes, Clock::time_point time)
{
    print(link, "xx", hexText(bytes) + "  (not a response to this request)", time);
}

void TraceTap::judged(const std::string &link, const std::string &verdict)
{
    print(link, "==", verdict, Clock::now());
}

void TraceTap::print(const std::string &link, const char *mark, const std::string &text,
                     Clock::time_point time)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const long long stamp = wallClockTime(time).count();
    const QString seconds =
        QDateTime::fromSecsSinceEpoch(stamp / MICROSECONDS).toString(QStringLiteral("HH:mm:ss"));
    std::fprintf(m_stream, "%s.%06lld %s %s %s\n", qPrintable(seconds), stamp % MICROSECONDS,
                 link.c_str(), mark, text.c_str());
}

} // namespace velko
