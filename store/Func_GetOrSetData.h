// Reads and writes of values by the host.
#pragma once

#include "velko_modbus_rtu.h"

/// Copies the value of a record in write form into the store. Missing value bytes are written as 0;
/// bytes outside the limits of the image are not written. Any thread; takes storeMutex; the caller
/// may hold listMutex.
void WriteDataToLocal(const RW_VAR *record);
