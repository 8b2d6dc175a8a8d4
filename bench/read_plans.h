// Which registers are read together: some ways to choose them.
#pragma once

#include "host/core/variables/variable.h"

#include <map>

/// One request each.
using ReadPlan = std::vector<velko::RegisterSpan>;

/// AREA_... -> registers, ascending, each once.
using AreaRegisters = std::map<int, std::vector<int>>;

/// One request per variable; one that covers more than `maxRegs` registers takes several.
ReadPlan planSingly(const std::vector<velko::Variable> &variables, int maxRegs);

/// Variables that touch or overlap share requests; no other register is read.
ReadPlan planTouching(const std::vector<velko::Variable> &variables, int maxRegs);

AreaRegisters registersIn(const ReadPlan &plan);
