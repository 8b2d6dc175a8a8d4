// What a plan costs, and what the best one would.
#pragma once

#include "bench/read_plans.h"

/// Every measure is so much per request and so much per register in it.
struct Measure {
    std::string id;
    std::string title;
    std::string unit;
    double perRequest;
    double perRegister;
};

/// Requests, bytes of requests and replies, and milliseconds on the wire at 9,600, 19,200 and 115,200
/// baud with characters of 11 bits: both frames and the silence behind each. `turnaround`:
/// milliseconds that the slave takes to answer.
std::vector<Measure> allMeasures(double turnaround);

double costOf(const ReadPlan &plan, const Measure &measure);

/// Of the best of all plans that read the wanted registers with at most `maxRegs` to a request. Areas
/// are stored apart, so that no request serves two of them.
double leastCost(const AreaRegisters &wanted, int maxRegs, const Measure &measure);

/// What would be saved if each request of the plan could be split at its gaps, and were where that is
/// worth it.
double lostInGaps(const ReadPlan &plan, const AreaRegisters &wanted, const Measure &measure);
