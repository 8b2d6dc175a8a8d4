// Write requests: function 16, and the read-modify-write of bits and bytes.
#pragma once

#include "velko_modbus_rtu.h"

/// Returns the function 16 request for a record in write form whose `addr` is a byte offset. The
/// record's count, modulo 65,536, is at most 32,763 registers. Missing value bytes count as 0.
/// Queues nothing.
Protocol WriteBool(const RW_VAR &record);

/// Queues the one or two frames of a record in write form, or none if no Modbus request can write
/// its kind or its length. Copies the value into the store unless the last exchange failed.
/// Communication thread, listMutex held; takes storeMutex.
void WriteRegister(RW_VAR *record);
