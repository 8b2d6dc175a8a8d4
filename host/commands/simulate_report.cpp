#include "host/commands/simulate_report.h"

#include "host/core/line/replies.h"
#include "host/core/sizes/limits.h"
#include "host/core/text/joined.h"
#include "host/core/text/numbers.h"
#include "host/plc/station_memory.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace velko
{

namespace
{

const size_t USAGE_WIDTH = 12; // of the first column in the list of faults

const char *const FOOTER_START = R"(
A fault is STATION:FAULT or STATION:FAULT=N. With /M appended, it affects only every M-th request
to the station. A station has one fault at a time.
)";

const char *const FOOTER_END = R"(
Example: Station 2 goes silent after 5 s and recovers 5 s later. Every tenth response of station 1 has
a wrong CRC.
  panelhost simulate --link plc --fault 1:flip/10 --at 5:2:silent --at 10:2:none)";

std::string listOf(const std::vector<int> &numbers)
{
    std::vector<std::string> texts;
    texts.reserve(numbers.size());
    for (const int number : numbers)
        texts.push_back(std::to_string(number));
    return joined(texts);
}

std::string lineText(const SimulatedLineSettings &settings)
{
    const std::string speed = settings.baudRate > 0 ? std::to_string(settings.baudRate) + " baud"
                                                    : std::string("no transmission time");
    return speed + (settings.echo ? ", with echo" : "");
}

std::string nameOf(int station)
{
    return station == BROADCAST_STATION ? "all stations (broadcast)"
                                        : "station " + std::to_string(station);
}

} // namespace

std::string simulateFooter()
{
    std::string text = FOOTER_START;
    for (const FaultHelp &fault : faultHelp()) {
        const size_t padding = USAGE_WIDTH - std::min(USAGE_WIDTH, fault.usage.size());
        text += "  " + fault.usage + std::string(padding, ' ') + " " + fault.effect + "\n";
    }
    return text + FOOTER_END;
}

void printStart(const SimulatedPlc &plc, const SimulatedLineSettings &settings,
                const std::string &link)
{
    std::printf("Device: %s\n", qPrintable(plc.device()));
    std::fflush(stdout);
    if (!link.empty())
        std::printf("Link: %s\n", link.c_str());
    std::printf("Stations: %s\n", listOf(settings.stations).c_str());
    std::printf("Line: %s\n", lineText(settings).c_str());
    std::printf("%s", registerMap().c_str());
    const int example = settings.stations.back();
    std::printf("To change a fault, enter it, for example \"%d:silent\" or \"%d:none\".\n", example,
                example);
}

void printTimedFault(const TimedFault &fault)
{
    std::printf("After %s s: %s\n", thousandths(fault.time.count(), 3).c_str(), fault.text.c_str());
}

void printNewFault(const std::string &text)
{
    std::printf("Now: %s\n", text.c_str());
}

void printRefusal(const std::string &reason)
{
    std::printf("Refused: %s\n", reason.c_str());
}

void printRequests(const SimulatedPlc &plc, const std::vector<int> &stations)
{
    std::map<int, int> counts;
    for (const int station : stations)
        counts[station] = 0;
    const std::vector<SeenRequest> requests = plc.requests();
    for (const SeenRequest &request : requests)
        ++counts[byteAt(request.frame, 0)];
    if (requests.size() >= RequestLog::MAX_REQUESTS)
        std::printf("Requests, only the last %zu:\n", requests.size());
    else
        std::printf("Requests:\n");
    for (const auto &[station, count] : counts) {
        const bool isSimulated = std::count(stations.begin(), stations.end(), station) > 0;
        std::printf("  to %s%s: %d\n", nameOf(station).c_str(),
                    station == BROADCAST_STATION || isSimulated ? "" : ", not simulated", count);
    }
}

} // namespace velko
