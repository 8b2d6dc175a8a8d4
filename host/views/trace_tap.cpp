#include "host/views/trace_tap.h"

#include "host/core/text/hex.h"

#include <QDateTime>

#include <sys/time.h>

namespace velko
{

void TraceTap::sent(const std::string &link, const QByteArray &frame)
{
    print(link, "->", hexText(frame));
}

void TraceTap::received(const std::string &link, const QByteArray &reply)
{
    print(link, "<-", hexText(reply));
}

void TraceTap::dropped(const std::string &link, const QByteArray &bytes)
{
    print(link, "xx", hexText(bytes) + "  (not a response to this request)");
}

void TraceTap::judged(const std::string &link, const std::string &verdict)
{
    print(link, "==", verdict);
}

void TraceTap::print(const std::string &link, const char *mark, const std::string &text)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    timeval now = {};
    ::gettimeofday(&now, nullptr);
    const QString time =
        QDateTime::fromSecsSinceEpoch(now.tv_sec).toString(QStringLiteral("HH:mm:ss"));
    std::fprintf(m_stream, "%s.%06ld %s %s %s\n", qPrintable(time), static_cast<long>(now.tv_usec),
                 link.c_str(), mark, text.c_str());
}

} // namespace velko
