// The cyclic requests and their cost as text.
#pragma once

#include "host/core/links/link.h"
#include "host/core/plan/request_planner.h"

#include <string>
#include <vector>

namespace velko
{

/// Returns lines: a table of the requests, the cycle time and hints.
std::vector<std::string> planReport(const Link &link, const std::vector<PlannedRequest> &plan);

} // namespace velko
