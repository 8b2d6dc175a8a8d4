#include "host/core/plan/request_cost.h"

#include "host/core/line/replies.h"
#include "host/core/sizes/units.h"

#include <algorithm>

namespace velko
{

namespace
{

std::vector<bool> neededRegisters(const RW_VAR &request, const Link &link)
{
    std::vector<bool> needed(static_cast<size_t>(request.count));
    for (const Variable &variable : link.variables) {
        const RegisterSpan span = registersOf(variable);
        if (!variable.isRead() || variable.station != request.station
            || span.area != request.varKind)
            continue;
        const int last = std::min(span.last - request.addr, request.count - 1);
        for (int i = std::max(span.first - request.addr, 0); i <= last; ++i)
            needed[static_cast<size_t>(i)] = true;
    }
    return needed;
}

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

RequestCost costOf(const PlannedRequest &request, const Link &link)
{
    const std::vector<bool> needed = neededRegisters(request.var, link);
    RequestCost cost;
    cost.function = byteAt(request.frame, 1);
    cost.wireRegister = byteAt(request.frame, 2) << BYTE_BITS | byteAt(request.frame, 3);
    cost.asked = request.var.count;
    cost.wanted = static_cast<int>(std::count(needed.begin(), needed.end(), true));
    cost.bytes = request.frame.size() + request.replyLength;
    cost.wireTime = wireTime(link.line, cost.bytes);
    cost.gaps = gapsIn(needed, request.var.addr);
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
