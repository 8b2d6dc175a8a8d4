// Access to the write queue for the layers above this one.
#pragma once

#include "driver/records.h"

/// Does what AddListWriteVar does, without its deep copy: the record must share no byte with the
/// host. So the pieces of one write share one copy of their texts. Any thread; takes listMutex.
int queueOwnWrite(const RW_VAR &own, int mode);
