#include "host/views/plan_report.h"

#include "host/core/line/replies.h"
#include "host/core/sizes/units.h"
#include "host/core/text/numbers.h"
#include "host/views/text_table.h"

#include <algorithm>

namespace velko
{

namespace
{

const int REQUEST_BYTES = 8;

std::vector<bool> wantedRegisters(const RW_VAR &request, const Link &link)
{
    std::vector<bool> wanted(static_cast<size_t>(request.count));
    for (const Variable &variable : link.variables) {
        const RegisterSpan span = registersOf(variable);
        if (!variable.isRead() || variable.station != request.station
            || span.area != request.varKind)
            continue;
        const int last = std::min(span.last - request.addr, request.count - 1);
        for (int i = std::max(span.first - request.addr, 0); i <= last; ++i)
            wanted[static_cast<size_t>(i)] = true;
    }
    return wanted;
}

std::vector<Gap> gapsIn(const std::vector<bool> &wanted, int first)
{
    std::vector<Gap> gaps;
    for (size_t i = 0; i < wanted.size(); ++i) {
        if (wanted[i])
            continue;
        if (i == 0 || wanted[i - 1])
            gaps.push_back({first + static_cast<int>(i), 0});
        ++gaps.back().count;
    }
    return gaps;
}

std::string hint(const PlannedRequest &request, const Gap &gap, const Link &link)
{
    const int offset = wireOffset(request.var.varKind);
    const int bytes = gap.count * REGISTER_BYTES;
    // What begins within maxRegs of the first register is read along.
    const int behindGap = gap.first + gap.count - request.var.addr;
    const int splitting = (behindGap - 1) / 2 * 2; // even, as a link that writes wants it
    return "Hint: station " + std::to_string(request.var.station) + ", registers "
           + std::to_string(gap.first + offset) + " to "
           + std::to_string(gap.first + gap.count - 1 + offset) + " are read for nothing: "
           + std::to_string(bytes) + " bytes, " + thousandths(wireTime(link.line, bytes).count())
           + " ms. A request of its own behind them would cost "
           + thousandths(overheadTime(link.line).count())
           + " ms: maxRegs = " + std::to_string(splitting)
           + " splits it here, or move the variables together. Then look at the plan again.";
}

} // namespace

RequestCost costOf(const PlannedRequest &request, const Link &link)
{
    const std::vector<bool> wanted = wantedRegisters(request.var, link);
    RequestCost cost;
    cost.function = byteAt(request.frame, 1);
    cost.wireRegister = byteAt(request.frame, 2) << BYTE_BITS | byteAt(request.frame, 3);
    cost.asked = request.var.count;
    cost.wanted = static_cast<int>(std::count(wanted.begin(), wanted.end(), true));
    cost.bytes = request.frame.size() + request.replyLength;
    cost.wireTime = wireTime(link.line, cost.bytes);
    cost.gaps = gapsIn(wanted, request.var.addr);
    return cost;
}

microseconds overheadTime(const LineSettings &line)
{
    return wireTime(line, REQUEST_BYTES + READ_OVERHEAD_BYTES) + 2 * silenceTime(line);
}

std::vector<std::string> planReport(const Link &link, const std::vector<PlannedRequest> &plan)
{
    TextTable table({"station", "function", "registers", "asked", "wanted", "gap", "bytes", "ms"});
    microseconds total{};
    std::vector<std::string> hints;
    for (const PlannedRequest &request : plan) {
        const RequestCost cost = costOf(request, link);
        table.add({std::to_string(request.var.station), std::to_string(cost.function),
                   std::to_string(cost.wireRegister) + ".."
                       + std::to_string(cost.wireRegister + cost.asked - 1),
                   std::to_string(cost.asked), std::to_string(cost.wanted),
                   std::to_string(cost.asked - cost.wanted), std::to_string(cost.bytes),
                   thousandths(cost.wireTime.count())});
        total += cost.wireTime + 2 * silenceTime(link.line);
        for (const Gap &gap : cost.gaps)
            if (wireTime(link.line, gap.count * REGISTER_BYTES) > overheadTime(link.line))
                hints.push_back(hint(request, gap, link));
    }
    std::vector<std::string> lines = table.lines();
    lines.push_back(std::to_string(plan.size()) + " requests; a cycle takes "
                    + thousandths(total.count()) + " ms at " + std::to_string(link.line.baudRate)
                    + " baud, silences included, and the time that the stations need to answer.");
    lines.insert(lines.end(), hints.begin(), hints.end());
    return lines;
}

} // namespace velko
