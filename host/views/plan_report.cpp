#include "host/views/plan_report.h"

#include "host/core/line/line_times.h"
#include "host/core/plan/request_cost.h"
#include "host/core/plan/wanted_registers.h"
#include "host/core/text/numbers.h"
#include "host/core/variables/kinds.h"
#include "host/views/json_objects.h"
#include "host/views/text_table.h"

#include <QJsonArray>
#include <QJsonObject>

namespace velko
{

namespace
{

std::string hint(const PlannedRequest &request, const Gap &gap, const Link &link)
{
    const int offset = wireOffset(request.var.varKind);
    return "Hint: station " + std::to_string(request.var.station) + ", gap registers "
           + std::to_string(gap.first + offset) + " to "
           + std::to_string(gap.first + gap.count - 1 + offset) + ": "
           + std::to_string(bytesOf(gap)) + " bytes, "
           + thousandths(wireTime(link.line, bytesOf(gap)).count()) + " ms. One more request takes "
           + thousandths(overheadTime(link.line).count())
           + " ms. Set maxRegs = " + std::to_string(maxRegsToSplit(request.var, gap))
           + " to split the request here, or move the variables together; then check the plan "
             "again.";
}

microseconds timeInCycle(const RequestCost &cost, const Link &link)
{
    return cost.wireTime + 2 * frameGap(link.line);
}

QJsonObject gapObject(const PlannedRequest &request, const Gap &gap, const Link &link)
{
    QJsonObject object{{"register", gap.first + wireOffset(request.var.varKind)},
                       {"count", gap.count},
                       {"bytes", bytesOf(gap)},
                       {"lineMs", jsonThousandth(wireTime(link.line, bytesOf(gap)).count())}};
    if (isWorthSplitting(gap, link.line))
        object["maxRegs"] = maxRegsToSplit(request.var, gap);
    return object;
}

QJsonObject requestObject(const PlannedRequest &request, const RequestCost &cost, const Link &link)
{
    QJsonArray gaps;
    for (const Gap &gap : cost.gaps)
        gaps.append(gapObject(request, gap, link));
    return {{"link", jsonText(link.name)},
            {"station", request.var.station},
            {"function", cost.function},
            {"register", cost.wireRegister},
            {"asked", cost.asked},
            {"wanted", cost.wanted},
            {"bytes", cost.bytes},
            {"lineMs", jsonThousandth(cost.wireTime.count())},
            {"gaps", gaps}};
}

} // namespace

std::vector<std::string> planReport(const Link &link, const std::vector<PlannedRequest> &plan)
{
    TextTable table({"station", "function", "registers", "asked", "wanted", "gap", "bytes", "ms"});
    const WantedRegisters wanted(link);
    microseconds total{};
    std::vector<std::string> hints;
    for (const PlannedRequest &request : plan) {
        const RequestCost cost = costOf(request, wanted, link.line);
        table.add({std::to_string(request.var.station), std::to_string(cost.function),
                   std::to_string(cost.wireRegister) + ".."
                       + std::to_string(cost.wireRegister + cost.asked - 1),
                   std::to_string(cost.asked), std::to_string(cost.wanted),
                   std::to_string(cost.asked - cost.wanted), std::to_string(cost.bytes),
                   thousandths(cost.wireTime.count())});
        total += timeInCycle(cost, link);
        for (const Gap &gap : cost.gaps)
            if (isWorthSplitting(gap, link.line))
                hints.push_back(hint(request, gap, link));
    }
    std::vector<std::string> lines = table.lines();
    lines.push_back(std::to_string(plan.size()) + " requests; cycle time "
                    + thousandths(total.count()) + " ms at " + std::to_string(link.line.baudRate)
                    + " baud with frame gaps, plus the response times of the stations");
    lines.insert(lines.end(), hints.begin(), hints.end());
    return lines;
}

std::vector<std::string> planJson(const Link &link, const std::vector<PlannedRequest> &plan)
{
    std::vector<std::string> lines;
    const WantedRegisters wanted(link);
    microseconds total{};
    int bytes = 0;
    for (const PlannedRequest &request : plan) {
        const RequestCost cost = costOf(request, wanted, link.line);
        lines.push_back(jsonLine("request", requestObject(request, cost, link)));
        total += timeInCycle(cost, link);
        bytes += cost.bytes;
    }
    lines.push_back(jsonLine("cycle", {{"link", jsonText(link.name)},
                                       {"requests", static_cast<int>(plan.size())},
                                       {"bytes", bytes},
                                       {"baud", link.line.baudRate},
                                       {"frameGapMs", jsonThousandth(frameGap(link.line).count())},
                                       {"cycleMs", jsonThousandth(total.count())}}));
    return lines;
}

} // namespace velko
