#include "host/peer_master.h"

#include <QProcess>
#include <QRegularExpression>
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
    const QString output = QString::fromLocal8Bit(process.readAll());
    if (!finished || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        throw std::runtime_error(program.toStdString() + " " + arguments.join(' ').toStdString()
                                 + " failed: " + process.errorString().toStdString() + "\n"
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

std::vector<uint16_t> readWithPeer(const QString &program, const QString &device, int station,
                                   int function, int first, int count)
{
    const QStringList arguments{"-m",
                                "rtu",
                                "-a",
                                QString::number(station),
                                "-b",
                                "19200",
                                "-P",
                                "none",
                                "-0",
                                "-r",
                                QString::number(first),
                                "-c",
                                QString::number(count),
                                "-t",
                                function == 4 ? "3:hex" : "4:hex",
                                "-1",
                                "-q",
                                device};
    const QString output = run(program, arguments);
    const std::vector<uint16_t> values = valuesIn(output);
    if (values.size() != static_cast<size_t>(count))
        throw std::runtime_error(program.toStdString() + " did not print " + std::to_string(count)
                                 + " registers:\n" + output.toStdString());
    return values;
}
