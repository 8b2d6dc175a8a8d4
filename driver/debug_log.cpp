// The message handler that a host may install: one time-stamped line per message in "debug.log".
#include "velko_modbus_rtu.h"

#include <QDateTime>
#include <QFile>
#include <QMutex>
#include <QMutexLocker>
#include <QTextStream>

namespace
{

// Keeps a line whole when several threads log at once, and guards `check`.
QMutex logMutex;

// True until the first message after loading, which starts a new file.
bool check = true;

// What Qt itself reports while a line is written would come back here and wait for logMutex.
thread_local bool writing = false;

class WritingMark
{
public:
    WritingMark() { writing = true; }
    ~WritingMark() { writing = false; }
    Q_DISABLE_COPY(WritingMark)
};

// "yyyy.MM.dd.hh:mm:ss.z" as Qt 4 writes it. The milliseconds are appended by hand because newer
// versions of Qt take "z" for a fraction: 7 ms would become 007.
QString timeStamp(const QDateTime &now)
{
    return now.toString(QLatin1String("yyyy.MM.dd.hh:mm:ss.")) + QString::number(now.time().msec());
}

// What Qt 4 takes the bytes of a message for: Latin-1, unless the host has set a codec for C strings.
// Later versions know no such codec.
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
        return; // a stream over a closed file would only make Qt complain
    QTextStream stream(&file);
    stream << timeStamp(QDateTime::currentDateTime()) << QLatin1Char(':') << textOf(message)
           << QLatin1Char('\n');
    stream.flush();
}
