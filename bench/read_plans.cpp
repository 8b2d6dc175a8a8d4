#include "bench/read_plans.h"

#include <algorithm>
#include <tuple>

using namespace velko;

namespace
{

bool startsLower(const RegisterSpan &left, const RegisterSpan &right)
{
    return std::tie(left.area, left.first) < std::tie(right.area, right.first);
}

void addCut(ReadPlan &plan, const RegisterSpan &span, int maxRegs)
{
    for (int first = span.first; first <= span.last; first += maxRegs)
        plan.push_back({span.area, first, std::min(first + maxRegs - 1, span.last)});
}

ReadPlan sortedSpans(const std::vector<Variable> &variables)
{
    ReadPlan spans;
    for (const Variable &variable : variables)
        spans.push_back(registersOf(variable));
    std::sort(spans.begin(), spans.end(), startsLower);
    return spans;
}

} // namespace

ReadPlan planSingly(const std::vector<Variable> &variables, int maxRegs)
{
    ReadPlan plan;
    for (const RegisterSpan &span : sortedSpans(variables))
        addCut(plan, span, maxRegs);
    return plan;
}

ReadPlan planTouching(const std::vector<Variable> &variables, int maxRegs)
{
    ReadPlan runs;
    for (const RegisterSpan &span : sortedSpans(variables)) {
        if (!runs.empty() && runs.back().area == span.area && span.first <= runs.back().last + 1)
            runs.back().last = std::max(runs.back().last, span.last);
        else
            runs.push_back(span);
    }
    ReadPlan plan;
    for (const RegisterSpan &run : runs)
        addCut(plan, run, maxRegs);
    return plan;
}

AreaRegisters registersIn(const ReadPlan &plan)
{
    AreaRegisters areas;
    for (const RegisterSpan &span : plan)
        for (int number = span.first; number <= span.last; ++number)
            areas[span.area].push_back(number);
    for (auto &[area, numbers] : areas) {
        std::sort(numbers.begin(), numbers.end());
        numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    }
    return areas;
}
