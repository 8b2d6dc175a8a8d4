#include "host/device_poll.h"

#include "host/communication_loop.h"

#include <cstdio>

namespace
{

void printValues(const DriverLibrary &driver, const PollSettings &settings)
{
    for (const Variable &variable : settings.variables) {
        QByteArray value;
        driver.GetRegisterData(0, variable.kind, QString::fromStdString(variable.address),
                               settings.station, &value, variable.length);
        std::printf("  %-26s%-12s%s\n", kindName(variable.kind).c_str(), variable.address.c_str(),
                    hexOf(value).c_str());
    }
}

void printCounters(const LineCounters &counters)
{
    std::printf("Frames: %d sent, %d good, %d repeated, %d given up\n", counters.sent,
                counters.good, counters.repeated, counters.givenUp);
}

} // namespace

bool pollDevice(const PollSettings &settings)
{
    ComInfo link;
    link.maxRegs = settings.maxRegs;
    link.defaultStation = settings.station;
    link.retryLimit = settings.retryLimit;
    const DriverLibrary driver(settings.library);
    SerialLine line(settings.line);
    driver.SetComInfo(&link);

    CommunicationLoop loop(driver, link, line);
    const int milliseconds = settings.seconds * 1000;
    QElapsedTimer timer;
    timer.start();
    const bool complete = loop.readAll(milliseconds, itemsOf(settings.variables));
    while (complete && !timer.hasExpired(milliseconds))
        loop.turn();

    // What was never read would show as 0, which nobody could tell from a value.
    if (complete)
        printValues(driver, settings);
    else
        std::printf("Not every variable could be read within %d s; no values are shown.\n",
                    settings.seconds);
    printCounters(loop.counters());
    return complete && loop.counters().givenUp == 0;
}
