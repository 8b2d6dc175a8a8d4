// What becomes of a request after its reply was judged.
#pragma once

#include "driver/records.h"

/// Copies every field but `value`, which is emptied.
void passRetValue(const RW_VAR &from, RW_VAR &to);
