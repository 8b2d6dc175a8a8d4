#include "bench/comparison.h"

#include "bench/driver_plan.h"

#include <stdexcept>

using namespace velko;

namespace
{

using Measures = std::vector<Measure>;

std::vector<double> costsOf(const ReadPlan &plan, const Measures &measures)
{
    std::vector<double> costs;
    for (const Measure &measure : measures)
        costs.push_back(costOf(plan, measure));
    return costs;
}

// Each measure has a best plan of its own.
std::vector<double> leastCosts(const AreaRegisters &wanted, int maxRegs, const Measures &measures)
{
    std::vector<double> costs;
    for (const Measure &measure : measures)
        costs.push_back(leastCost(wanted, maxRegs, measure));
    return costs;
}

// A method that is better than the best possible means that a computation here is wrong.
void checkBest(const Comparison &comparison)
{
    const double rounding = 1e-6;
    const std::vector<double> &best = comparison.methods.back().costs;
    for (const Method &method : comparison.methods)
        for (size_t i = 0; i < best.size(); ++i)
            if (method.costs[i] < best[i] - rounding)
                throw std::logic_error("\"" + method.name + "\" is better than the best possible, "
                                       + nameOf(comparison.set) + ", "
                                       + std::to_string(comparison.variables) + " variables");
}

} // namespace

Comparison compare(const std::string &library, TagSet set, const std::vector<Variable> &variables,
                   int maxRegs, const Measures &measures)
{
    const ReadPlan singly = planSingly(variables, maxRegs);
    const AreaRegisters wanted = registersIn(singly);
    const ReadPlan driver = planOfDriver(library, variables, maxRegs);
    const ReadPlan touching = planTouching(variables, maxRegs);
    Comparison comparison{set, static_cast<int>(variables.size()), {}, {}};
    comparison.methods = {
        {"driver", "driver", costsOf(driver, measures)},
        {"single", "one request per variable", costsOf(singly, measures)},
        {"touching", "adjacent ones merged", costsOf(touching, measures)},
        {"best", "best possible", leastCosts(wanted, maxRegs, measures)},
    };
    for (const Measure &measure : measures)
        comparison.lostInGaps.push_back(lostInGaps(driver, wanted, measure));
    checkBest(comparison);
    return comparison;
}
