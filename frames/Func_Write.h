// Write requests: function 16, and the read-modify-write of bits and bytes.
#pragma once

#include "driver/records.h"

/// Offset of the register values in a function 16 frame: station, function, first register, number
/// of registers, byte count.
const int WRITE_HEADER_BYTES = 7;

/// Bytes of the function 16 reply.
const int WRITE_REPLY_BYTES = 8;

/// The function 16 request for a record in write form whose `addr` is a byte offset. Missing value
/// bytes count as 0. Queues nothing. The record's count, modulo 65,536, is at most 32,763.
Protocol WriteBool(const RW_VAR &record);

/// Queues the one or two frames of a record in write form, or none when its kind or its length has
/// no Modbus request, and shows the value in the store unless the line is failing. Communication
/// thread, listMutex held; takes storeMutex.
void WriteRegister(RW_VAR *record);
