// Requests of remote mode: a frame format of the library's own that ends with a one-byte sum.
#pragma once

#include "velko_modbus_rtu.h"

// Both queue one frame for a record of any kind. A write also copies its value into the store. A
// write whose frame would exceed LIMIT_FRAME_BYTES queues none. Communication thread, listMutex
// held.
void Remote_ReadVar(RW_VAR *record);
void Remote_WriteVar(RW_VAR *record); ///< takes storeMutex
