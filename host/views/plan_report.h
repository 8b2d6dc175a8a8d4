// What a cyclic list costs on the line, for people.
#pragma once

#include "host/core/plan/request_planner.h"

#include <string>
#include <vector>

namespace velko
{

/// A table of the requests, the time of a cycle and hints, as lines.
std::vector<std::string> planReport(const Link &link, const std::vector<PlannedRequest> &plan);

} // namespace velko
