#include "host/core/plan/request_cost.h"

#include "host/core/line/replies.h"
#include "host/core/sizes/units.h"

#include <algorithm>

namespace velko
{

namespace
{

std::vector<Gap> gapsIn(const std::vector<bool> &needed, int first)
{
    std::vector<Gap> gaps;
    for (size_t i = 0; i < needed.size(); ++i) {
        if (needed[i])
            continue;
        if (i == 0 || needed[i - 1])
            gaps.push_back({first + static_cast<int>(i), 0});
        ++gaps.back().count;
    }
    return gaps;
}

} // namespace

RequestCost costOf(const PlannedRequest &request, const WantedRegisters &wanted,
                   const LineSettings &line)
{
    const RW_VAR &var = request.var;
    const std::vector<bool> needed =
        wanted.marksIn(var.station, {var.varKind, var.addr, var.addr + var.count - 1});
    RequestCost cost;
    cost.function = byteAt(request.frame, 1);
    cost.wireRegister = byteAt(request.frame, 2) << BYTE_BITS | byteAt(request.frame, 3);
    cost.asked = var.count;
    cost.wanted = static_cast<int>(std::count(needed.begin(), needed.end(), true));
    cost.bytes = request.frame.size() + request.replyLength;
    cost.wireTime = wireTime(line, cost.bytes);
    cost.gaps = gapsIn(needed, var.addr);
    return cost;
}

int bytesOf(const Gap &gap)
{
    return gap.count * REGISTER_BYTES;
}

microseconds overheadTime(const LineSettings &line)
{
    return wireTime(line, SHORT_FRAME_BYTES + READ_OVERHEAD_BYTES) + 2 * frameGap(line);
}

bool isWorthSplitting(const Gap &gap, const LineSettings &line)
{
    return wireTime(line, bytesOf(gap)) > overheadTime(line);
}

// The driver merges registers that begin within maxRegs of the first register.
int maxRegsToSplit(const RW_VAR &request, const Gap &gap)
{
    const int registersBefore = gap.first + gap.count - request.addr;
    return (registersBefore - 1) / 2 * 2;
}

} // namespace velko
