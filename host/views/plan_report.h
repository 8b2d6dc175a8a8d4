// What a cyclic list costs on the line.
#pragma once

#include "host/core/line/line_times.h"
#include "host/core/plan/request_planner.h"

namespace velko
{

/// Registers within a request that no variable wants.
struct Gap {
    int first; ///< before the 5000 of the third area is added
    int count;
};

struct RequestCost {
    int function;
    int wireRegister; ///< as numbered on the line
    int asked;        ///< registers
    int wanted;
    int bytes; ///< request and reply
    microseconds wireTime;
    std::vector<Gap> gaps;
};

RequestCost costOf(const PlannedRequest &request, const Link &link);

/// Of one more request for nothing: its bytes without data, and two silences.
microseconds overheadTime(const LineSettings &line);

/// The table, the time of a cycle and hints, as lines.
std::vector<std::string> planReport(const Link &link, const std::vector<PlannedRequest> &plan);

} // namespace velko
