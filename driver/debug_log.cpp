// The message handler that a host may install: it writes each message to "debug.log" as one line
// with a time stamp.
#include "velko_modbus_rtu.h"

#include <QDateTime>
#include <QFile>
#include <QMutex>
#include <QMutexLocker>
#include <QTextStream>

namespace
{

// Keeps lines whole when several threads log at the same time; also guards `check`.
QMutex logMutex;

// True until the first message after loading. That message starts a new file.
bool check = true;

// True on the thread that writes a line. A message from Qt during that time would enter the handler
// again and wait for logMutex forever, so it is dropped.
thread_local bool writing = false;

class WritingMark
{
public:
    WritingMark() { writing = true; }
    ~WritingMark() { writing = false; }
    Q_DISABLE_COPY(WritingMark)
};

// Formats "yyyy.MM.dd.hh:mm:ss.z" as Qt 4 does. The milliseconds are appended separately because
// later versions of Qt treat "z" as a fraction: 7 ms would become 007.
QString timeStamp(const QDateTime &now)
{
    return now.toString(QLatin1String("yyyy.MM.dd.hh:mm:ss.")) + QString::number(now.time().msec());
}

// Decodes a message as Qt 4 does: as Latin-1, unless the host has set a codec for C strings. Later
// versions of Qt have no such codec.
QString textOf(const char *message)
{
#if QT_VERSION < 0x050000
    return QString::fromAscii(message);
#else
    return QString::fromLatin1(message);
#endif
}

} // namespace

void customMessageHandler(QtMsgType, const char *message)
{
    if (!message || writing)
        return;
    const QMutexLocker lock(&logMutex);
    const WritingMark mark;

    QFile file(QLatin1String("debug.log"));
    const QIODevice::OpenMode mode =
        check ? QIODevice::WriteOnly : QIODevice::WriteOnly | QIODevice::Append;
    check = false;
    if (!file.open(mode))
        return; // a stream on a closed file only makes Qt print a warning
    QTextStream stream(&file);
    stream << timeStamp(QDateTime::currentDateTime()) << QLatin1Char(':') << textOf(message)
           << QLatin1Char('\n');
    stream.flush();
}
