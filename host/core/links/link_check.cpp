#include "host/core/links/link_check.h"

#include "host/core/sizes/limits.h"
#include "host/core/text/numbers.h"

#include <limits>
#include <stdexcept>

namespace velko
{

namespace
{

void checkRange(const std::string &what, int number, int lowest, int highest)
{
    if (number < lowest || number > highest)
        throw std::invalid_argument(what + " " + std::to_string(number)
                                    + " is out of range: " + rangeText(lowest, highest));
}

void checkLine(const LineSettings &line)
{
    if (line.devices.empty())
        throw std::invalid_argument("there is no device");
    checkRange("baud rate", line.baudRate, LOWEST_BAUD, HIGHEST_BAUD);
    checkRange("stop bits", line.stopBits, 1, HIGHEST_STOP_BITS);
    checkRange("response timeout", line.responseTimeout, 1, LONGEST_TIME);
    checkRange("inter-character timeout", line.interCharacterTimeout, 1, LONGEST_TIME);
    checkRange("guard time", line.guardTime.value_or(0), 0, LONGEST_TIME);
    checkRange("frame gap", line.minFrameGap, 0, 1000 * LONGEST_SILENCE);
}

void checkRequests(const Link &link, int maxRegs, int retries)
{
    const int highest = link.isWritten() ? HIGHEST_MAX_REGS_WRITING : HIGHEST_MAX_REGS_READING;
    checkRange("maxRegs", maxRegs, LOWEST_MAX_REGS, highest);
    if (link.isWritten() && !isWholeDoubleWords(maxRegs))
        throw std::invalid_argument("maxRegs " + std::to_string(maxRegs) + " is not even");
    checkRange("retries", retries, 0, HIGHEST_RETRIES);
}

void checkStations(const Link &link)
{
    for (const auto &place : link.stationSettings) {
        const int station = place.first;
        checkRange("station", station, LOWEST_STATION, HIGHEST_STATION);
        checkRange("response timeout", link.responseTimeoutOf(station), 1, LONGEST_TIME);
        checkRequests(link, link.maxRegsOf(station), link.retriesOf(station));
    }
}

} // namespace

void checkLink(const Link &link)
{
    checkLine(link.line);
    checkRequests(link, link.maxRegs, link.retries);
    checkRange("queueAgain", link.queueAgain, 0, HIGHEST_QUEUE_AGAIN);
    checkRange("staleAfter", link.staleAfter, 1, std::numeric_limits<int>::max());
    checkStations(link);
    for (const Variable &variable : link.variables) {
        try {
            checkRange("station", variable.station, LOWEST_STATION, HIGHEST_STATION);
            checkRange("kind", variable.kind, 0, KIND_COUNT - 1);
            checkVariable(variable);
        } catch (const std::invalid_argument &error) {
            throw std::invalid_argument("variable \"" + variable.name + "\": " + error.what());
        }
    }
}

} // namespace velko
