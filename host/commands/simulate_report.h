// Output of `panelhost simulate`, and the end of its help text.
#pragma once

#include "host/plc/fault_schedule.h"
#include "host/plc/simulated_plc.h"

#include <string>
#include <vector>

namespace velko
{

/// Returns the end of the help text, which explains the faults.
std::string simulateFooter();

/// Prints the device, then the settings and the registers. The device has its own line for programs
/// that start this one. `link` is not printed if it is empty.
void printStart(const SimulatedPlc &plc, const SimulatedLineSettings &settings,
                const std::string &link);

/// Prints a fault of the schedule that was set.
void printTimedFault(const TimedFault &fault);

/// Print the result of a line on standard input.
void printNewFault(const std::string &text);
void printRefusal(const std::string &reason);

/// Prints the number of requests to each station.
void printRequests(const SimulatedPlc &plc, const std::vector<int> &stations);

} // namespace velko
