// Read requests: functions 03 and 04.
#pragma once

#include "driver/records.h"

/// Parts of every Modbus frame, in bytes.
const int READ_HEADER_BYTES = 3; // of a read reply: station, function, byte count
const int CHECK_BYTES = 2;

/// The read request for a record in read form (area code, register, count). Queues nothing.
Protocol ReadAnalog(const RW_VAR &record);

/// Queues the read request of a record. Communication thread, listMutex held.
void ReadRegister(RW_VAR *record);
