// Faults as the user of `panelhost simulate` gives them.
#pragma once

#include "host/plc/fault_schedule.h"
#include "host/plc/faults.h"

#include <string>
#include <vector>

namespace velko
{

/// Parses "STATION:FAULT". Throws std::invalid_argument with the reason, also if the station is not
/// one of `stations`.
StationFault faultFor(const std::vector<int> &stations, const std::string &text);

/// Parses "SECONDS:STATION:FAULT". Throws as faultFor does.
TimedFault timedFaultFor(const std::vector<int> &stations, const std::string &text);

} // namespace velko
