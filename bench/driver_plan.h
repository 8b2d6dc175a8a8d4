// What the driver makes of a set of variables.
#pragma once

#include "bench/read_plans.h"

/// As its frames ask for it. Throws std::runtime_error where the library cannot be loaded, where a
/// frame is none that a slave would answer as expected, and where a register of a variable is not
/// read.
ReadPlan planOfDriver(const std::string &library, const std::vector<velko::Variable> &variables,
                      int maxRegs);
