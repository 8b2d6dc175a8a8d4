#include "bench/driver_plan.h"

#include "host/core/line/crc16.h"
#include "host/core/line/replies.h"
#include "host/core/plan/request_planner.h"
#include "host/core/text/hex.h"
#include "host/core/variables/kinds.h"

#include <algorithm>
#include <stdexcept>

using namespace velko;

namespace
{

const int READ_REQUEST_BYTES = 8;
const int READ_HOLDING_REGISTERS = 3;
const int READ_INPUT_REGISTERS = 4;

int wordAt(const QByteArray &frame, int index)
{
    return byteAt(frame, index) << 8 | byteAt(frame, index + 1);
}

// Returns what is wrong with the request, or an empty text.
std::string faultOf(const PlannedRequest &request, const Variable &any, int maxRegs)
{
    const QByteArray &frame = request.frame;
    if (frame.size() != READ_REQUEST_BYTES || !endsInItsCrc(frame))
        return "not a complete read request";
    const int area = request.var.varKind;
    const int function = area == AREA_INPUT ? READ_INPUT_REGISTERS : READ_HOLDING_REGISTERS;
    if (byteAt(frame, 0) != any.station || byteAt(frame, 1) != function)
        return "wrong station or function";
    const int count = wordAt(frame, 4);
    if (wordAt(frame, 2) != request.var.addr + wireOffset(area) || count != request.var.count)
        return "the registers differ from those of its record";
    if (count < 1 || count > maxRegs)
        return "wrong number of registers: " + std::to_string(count);
    if (request.replyLength != READ_OVERHEAD_BYTES + 2 * count)
        return "wrong length of the expected reply: " + std::to_string(request.replyLength);
    return std::string();
}

void checkCoverage(const std::vector<Variable> &variables, const ReadPlan &plan)
{
    const AreaRegisters read = registersIn(plan);
    for (const Variable &variable : variables) {
        const RegisterSpan span = registersOf(variable);
        const auto area = read.find(span.area);
        for (int number = span.first; number <= span.last; ++number)
            if (area == read.end()
                || !std::binary_search(area->second.begin(), area->second.end(), number))
                throw std::runtime_error("the driver does not read register "
                                         + std::to_string(number) + " of " + placeOf(variable));
    }
}

} // namespace

ReadPlan planOfDriver(const std::string &library, const std::vector<Variable> &variables,
                      int maxRegs)
{
    Link link;
    link.maxRegs = maxRegs;
    link.variables = variables;
    ReadPlan plan;
    for (const PlannedRequest &request : RequestPlanner(library).plan(link)) {
        const std::string fault = faultOf(request, variables.front(), maxRegs);
        if (!fault.empty())
            throw std::runtime_error("request " + std::to_string(plan.size() + 1)
                                     + " of the driver, " + hexText(request.frame) + ": " + fault);
        plan.push_back(
            {request.var.varKind, request.var.addr, request.var.addr + request.var.count - 1});
    }
    checkCoverage(variables, plan);
    return plan;
}
