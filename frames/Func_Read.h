// Read requests: functions 03 and 04.
#pragma once

#include "velko_modbus_rtu.h"

/// Returns the read request for a record in read form (area code, register, count). Queues nothing.
Protocol ReadAnalog(const RW_VAR &record);

/// Queues the read request of a record. Communication thread, listMutex held.
void ReadRegister(RW_VAR *record);
