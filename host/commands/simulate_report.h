// What `panelhost simulate` prints on standard output, and the end of its help.
#pragma once

#include "host/plc/fault_schedule.h"
#include "host/plc/simulated_plc.h"

#include <string>
#include <vector>

namespace velko
{

/// Explains faults, from the table of the faults.
std::string simulateFooter();

/// Prints the device first, on a line of its own, for programs that start this one; then the settings
/// and the registers. `link`: an empty one is not printed.
void printStart(const SimulatedPlc &plc, const SimulatedLineSettings &settings,
                const std::string &link);

void printTimedFault(const TimedFault &fault);

/// For a line on standard input.
void printNewFault(const std::string &text);
void printRefusal(const std::string &reason);

/// Prints the number of requests to each station.
void printRequests(const SimulatedPlc &plc, const std::vector<int> &stations);

} // namespace velko
