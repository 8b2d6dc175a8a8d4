// Finishes, repeats or gives up a request after the check of its response.
#pragma once

#include "velko_modbus_rtu.h"

/// Copies all fields except `value`, which becomes empty.
void passRetValue(const RW_VAR &from, RW_VAR &to);
