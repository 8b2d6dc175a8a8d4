// The host's reads and writes of values.
#pragma once

#include "driver/records.h"

/// Copies the value of a record in write form into the store; bytes that the value lacks are
/// written as 0, bytes outside the image's limits not at all. Any thread; takes storeMutex; the
/// caller may hold listMutex.
void WriteDataToLocal(const RW_VAR *record);
