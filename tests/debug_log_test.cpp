// The message handler that a host can install.
#include "tests/driver_under_test.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QTime>

#include <thread>

namespace
{

// Qt 5 passes a context and a string to its handler; the driver's handler has the signature of Qt
// 4.
decltype(&customMessageHandler) installed = nullptr;

void onMessage(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    installed(type, message.toLatin1().constData());
}

int countedMessages = 0;

void countMessage(QtMsgType, const QMessageLogContext &, const QString &)
{
    ++countedMessages;
}

} // namespace

class DebugLogTest : public DriverTest
{
protected:
    DebugLogTest() : before(QDir::currentPath())
    {
        QDir::setCurrent(folder.path());
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    }

    ~DebugLogTest() override { QDir::setCurrent(before); }

    static QByteArray log()
    {
        QFile file("debug.log");
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }

    static bool matches(const QByteArray &text, const char *messages)
    {
        const QString stamp =
            QStringLiteral("\\d{4}\\.\\d\\d\\.\\d\\d\\.\\d\\d:\\d\\d:\\d\\d\\.(0|[1-9]\\d{0,2}):");
        const QString pattern = QString::fromUtf8(messages).replace("@", stamp);
        return QRegularExpression("^" + pattern + "$").match(QString::fromUtf8(text)).hasMatch();
    }

    QTemporaryDir folder;
    QString before;
};

TEST_F(DebugLogTest, OneLinePerMessage)
{
    QFile old("debug.log");
    ASSERT_TRUE(old.open(QIODevice::WriteOnly) && old.write("old\n") == 4);
    old.close();
    driver.customMessageHandler(QtDebugMsg, nullptr);
    EXPECT_EQ(log(), "old\n");
    driver.customMessageHandler(QtDebugMsg, "first");
    EXPECT_PRED2(matches, log(), "@first\n");
    driver.customMessageHandler(QtWarningMsg, " two\nlines ");
    driver.customMessageHandler(QtCriticalMsg, "");
    driver.customMessageHandler(QtFatalMsg, "caf\xE9"); // Latin-1
    EXPECT_PRED2(matches, log(), "@first\n@ two\nlines \n@\n@caf\u00E9\n");
}

TEST_F(DebugLogTest, MillisecondsHaveNoLeadingZeros)
{
    while (QTime::currentTime().msec() < 1 || QTime::currentTime().msec() > 60)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    driver.customMessageHandler(QtDebugMsg, "early");
    EXPECT_PRED2(matches, log(), "@early\n");
}

TEST_F(DebugLogTest, FileCannotBeOpened)
{
    ASSERT_TRUE(QDir().mkdir("debug.log"));
    installed = driver.customMessageHandler;
    const QtMessageHandler previous = qInstallMessageHandler(onMessage);
    qWarning("lost");
    qInstallMessageHandler(countMessage);
    driver.customMessageHandler(QtDebugMsg, "lost silently");
    qInstallMessageHandler(previous);
    EXPECT_EQ(countedMessages, 0);
    ASSERT_TRUE(QDir().rmdir("debug.log"));
    QFile kept("debug.log");
    ASSERT_TRUE(kept.open(QIODevice::WriteOnly) && kept.write("kept\n") == 5);
    kept.close();
    driver.customMessageHandler(QtDebugMsg, "second");
    EXPECT_PRED2(matches, log(), "kept\n@second\n") << "only the first call truncates the file";
}

TEST_F(DebugLogTest, LinesOfSeveralThreadsDoNotMix)
{
    const QByteArray message(20000, 'x'); // longer than a stream writes at once
    const auto logTwentyFive = [&] {
        for (int i = 0; i < 25; ++i)
            driver.customMessageHandler(QtDebugMsg, message.constData());
    };
    std::thread threads[4];
    for (std::thread &thread : threads)
        thread = std::thread(logTwentyFive);
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_PRED2(matches, log(), "(@x{20000}\n){100}");
}
