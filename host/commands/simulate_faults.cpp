#include "host/commands/simulate_faults.h"

#include "host/core/text/numbers.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace velko
{

StationFault faultFor(const std::vector<int> &stations, const std::string &text)
{
    const StationFault fault = parseFault(text);
    if (std::find(stations.begin(), stations.end(), fault.station) == stations.end())
        throw std::invalid_argument("fault \"" + text + "\": station "
                                    + std::to_string(fault.station) + " is not simulated");
    return fault;
}

TimedFault timedFaultFor(const std::vector<int> &stations, const std::string &text)
{
    const size_t colon = text.find(':');
    if (colon == std::string::npos)
        throw std::invalid_argument(
            "--at \"" + text + "\": the form is SECONDS:STATION:FAULT, for example 5:2:silent");
    const std::chrono::milliseconds time(millisecondsIn(text.substr(0, colon)));
    const std::string fault = text.substr(colon + 1);
    return {time, fault, faultFor(stations, fault)};
}

} // namespace velko
