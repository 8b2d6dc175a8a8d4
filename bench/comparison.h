// Compares the driver's read plan for a set of variables with other plans.
#pragma once

#include "bench/plan_cost.h"
#include "bench/tag_sets.h"
#include "host/core/variables/variable.h"

#include <string>
#include <vector>

struct Method {
    std::string id;
    std::string name;
    std::vector<double> costs; ///< one per measure
};

struct Comparison {
    TagSet set;
    int variables;
    std::vector<Method> methods; ///< the driver first, the best possible last
    std::vector<double> lostInGaps;
};

/// Throws std::runtime_error if the driver's plan is wrong.
Comparison compare(const std::string &library, TagSet set,
                   const std::vector<velko::Variable> &variables, int maxRegs,
                   const std::vector<Measure> &measures);
