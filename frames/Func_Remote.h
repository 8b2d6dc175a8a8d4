// Requests of remote mode: a frame format of the library's own, sealed with a one-byte sum.
#pragma once

#include "driver/records.h"

// Both queue one frame for a record of any kind; a write also shows its value in the store. A write
// whose frame would pass LIMIT_FRAME_BYTES queues none. Communication thread, listMutex held.
void Remote_ReadVar(RW_VAR *record);
void Remote_WriteVar(RW_VAR *record); ///< takes storeMutex
