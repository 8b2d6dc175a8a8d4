// Ways to choose the registers that are read together.
#pragma once

#include "host/core/variables/variable.h"

#include <map>
#include <vector>

/// Each span is one request.
using ReadPlan = std::vector<velko::RegisterSpan>;

/// Area (AREA_...) -> registers, in ascending order, without duplicates.
using AreaRegisters = std::map<int, std::vector<int>>;

/// One request per variable; a variable of more than `maxRegs` registers takes several.
ReadPlan planSingly(const std::vector<velko::Variable> &variables, int maxRegs);

/// Adjacent or overlapping variables share requests; no other register is read.
ReadPlan planTouching(const std::vector<velko::Variable> &variables, int maxRegs);

AreaRegisters registersIn(const ReadPlan &plan);
