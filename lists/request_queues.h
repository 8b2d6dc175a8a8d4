// Access to the write queue for the layers above this one.
#pragma once

#include "velko_modbus_rtu.h"

/// Queues a write as AddListWriteVar does, but without a deep copy, so that the pieces of one write
/// share their texts. The record must share no byte with the host. Any thread; takes listMutex.
int queueOwnWrite(const RW_VAR &own, int mode);
