// The cost of a cyclic request on the line.
#pragma once

#include "host/core/line/line_settings.h"
#include "host/core/line/line_times.h"
#include "host/core/plan/request_planner.h"
#include "host/core/plan/wanted_registers.h"
#include "velko_modbus_rtu.h"

#include <vector>

namespace velko
{

/// A run of registers within a request that no variable needs.
struct Gap {
    int first; ///< register address in the area, without wireOffset
    int count;
};

struct RequestCost {
    int function;          ///< function code
    int wireRegister;      ///< address of the first register on the line
    int asked;             ///< registers of the request
    int wanted;            ///< registers that a variable needs
    int bytes;             ///< of request and response
    microseconds wireTime; ///< transmission time of these bytes
    std::vector<Gap> gaps;
};

/// `wanted` and `line` are those of the link whose request it is.
RequestCost costOf(const PlannedRequest &request, const WantedRegisters &wanted,
                   const LineSettings &line);

/// Returns the number of bytes of the gap in the response.
int bytesOf(const Gap &gap);

/// Returns the time of one more request without its data: its other bytes and two frame gaps.
microseconds overheadTime(const LineSettings &line);

/// True if the gap takes longer than one more request.
bool isWorthSplitting(const Gap &gap, const LineSettings &line);

/// Returns the maxRegs for which the registers after the gap become a separate request. It is even,
/// as required on a link with writable variables.
int maxRegsToSplit(const RW_VAR &request, const Gap &gap);

} // namespace velko
