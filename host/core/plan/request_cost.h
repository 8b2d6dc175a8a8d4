// The cost of a request of the cyclic list on the line.
#pragma once

#include "host/core/line/line_settings.h"
#include "host/core/line/line_times.h"
#include "host/core/links/link.h"
#include "host/core/plan/request_planner.h"
#include "velko_modbus_rtu.h"

#include <vector>

namespace velko
{

/// Registers within a request that no variable needs.
struct Gap {
    int first; ///< before the 5000 of the third area is added
    int count;
};

struct RequestCost {
    int function;
    int wireRegister; ///< the first one, as numbered on the line
    int asked;        ///< registers of the request
    int wanted;       ///< registers that a variable needs
    int bytes;        ///< of request and response
    microseconds wireTime;
    std::vector<Gap> gaps;
};

RequestCost costOf(const PlannedRequest &request, const Link &link);

/// Bytes of the response that carry the gap.
int bytesOf(const Gap &gap);

/// The time of one more request, without its data: the other bytes and two silent intervals.
microseconds overheadTime(const LineSettings &line);

/// True if the gap takes longer than one more request does.
bool isWorthSplitting(const Gap &gap, const LineSettings &line);

/// The maxRegs with which the registers after the gap become a request of their own. Even, as a
/// link that writes needs it.
int maxRegsToSplit(const RW_VAR &request, const Gap &gap);

} // namespace velko
