// The requests that the driver makes for a set of variables.
#pragma once

#include "bench/read_plans.h"
#include "host/core/variables/variable.h"

#include <string>
#include <vector>

/// Returns the registers that the driver's frames read. Throws std::runtime_error if the library
/// cannot be loaded, if a frame is wrong, or if a register of a variable is not read.
ReadPlan planOfDriver(const std::string &library, const std::vector<velko::Variable> &variables,
                      int maxRegs);
