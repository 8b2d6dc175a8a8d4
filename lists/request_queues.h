// The write queue, for what lies above it in the library.
#pragma once

#include "driver/records.h"

/// AddListWriteVar for a record that shares no byte with the host: the pieces of one write share their
/// texts, which are copied once. Any thread; takes listMutex.
int queueOwnWrite(const RW_VAR &own, int mode);
