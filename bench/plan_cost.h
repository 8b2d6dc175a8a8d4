// The cost of a read plan and of the best possible plan.
#pragma once

#include "bench/read_plans.h"

#include <string>
#include <vector>

/// A measure of cost: a fixed part per request and a part per register.
struct Measure {
    std::string id;
    std::string title;
    std::string unit;
    double perRequest;
    double perRegister;
};

/// Returns the measures: requests; bytes of requests and replies; milliseconds on the wire at
/// 9,600, 19,200 and 115,200 baud with characters of 11 bits, which include both frames and the
/// silent interval after each. `turnaround` is the turnaround time of the slave in milliseconds.
std::vector<Measure> allMeasures(double turnaround);

double costOf(const ReadPlan &plan, const Measure &measure);

/// Returns the cost of the best plan that reads the wanted registers with at most `maxRegs` per
/// request. No request serves two areas.
double leastCost(const AreaRegisters &wanted, int maxRegs, const Measure &measure);

/// Returns the savings if each request of the plan were split at those gaps where splitting costs
/// less.
double lostInGaps(const ReadPlan &plan, const AreaRegisters &wanted, const Measure &measure);
