#include "host/peer_master.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QStringList>

#include <stdexcept>

namespace
{

const int PEER_TIMEOUT = 10000; // milliseconds

QString run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    const bool finished = process.waitForFinished(PEER_TIMEOUT);
    QString output = QString::fromLocal8Bit(process.readAll());
    const bool good =
        finished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (!good)
        throw std::runtime_error(
            program.toStdString() + " " + arguments.join(' ').toStdString()
            + (finished ? " ended with status " + std::to_string(process.exitCode()) + "\n"
                        : " did not end in time\n")
            + output.toStdString());
    return output;
}

// Lines like "[30]: 	0x5AA5".
std::vector<uint16_t> valuesIn(const QString &output)
{
    static const QRegularExpression line(QStringLiteral("\\[\\d+\\]:\\s+0x([0-9A-Fa-f]{1,4})\\b"));
    std::vector<uint16_t> values;
    QRegularExpressionMatchIterator match = line.globalMatch(output);
    while (match.hasNext())
        values.push_back(match.next().captured(1).toUShort(nullptr, 16));
    return values;
}

} // namespace

void requirePeer(const QString &program)
{
    if (QStandardPaths::findExecutable(program).isEmpty())
        throw std::runtime_error("there is no program " + program.toStdString()
                                 + ": install it (Debian has mbpoll), or leave --peer out");
}

std::vector<uint16_t> readWithPeer(const QString &program, const QString &device, int station,
                                   int function, int first, int count)
{
    const QString options =
        QStringLiteral("-m rtu -a %1 -b 19200 -P none -0 -r %2 -c %3 -t %4:hex -1 -q")
            .arg(station)
            .arg(first)
            .arg(count)
            .arg(function == 4 ? 3 : 4);
    const QStringList arguments = options.split(' ') + QStringList(device);
    const QString output = run(program, arguments);
    std::vector<uint16_t> values = valuesIn(output);
    if (values.size() != static_cast<size_t>(count))
        throw std::runtime_error(program.toStdString() + " did not print " + std::to_string(count)
                                 + " registers:\n" + output.toStdString());
    return values;
}
