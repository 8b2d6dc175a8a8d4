// The cyclic requests and their cost, as text and as JSON.
#pragma once

#include "host/core/links/link.h"
#include "host/core/plan/request_planner.h"

#include <string>
#include <vector>

namespace velko
{

/// Returns lines: a table of the requests, the cycle time and hints.
std::vector<std::string> planReport(const Link &link, const std::vector<PlannedRequest> &plan);

/// Returns lines: a "request" object for each request, then a "cycle" object. docs/json.md
/// describes them.
std::vector<std::string> planJson(const Link &link, const std::vector<PlannedRequest> &plan);

} // namespace velko
