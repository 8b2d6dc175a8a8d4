// The bit or byte that a read-modify-write changes in its register.
#pragma once

#include "velko_modbus_rtu.h"

/// Stored separately from the write queue because other threads may append to that queue while a
/// response is saved.
struct PendingMerge {
    bool active = false;
    int varKind = 0;
    int addr = 0;            // linear offset
    unsigned char value = 0; // first value byte of the write
};

/// Returns the merge for a queued write of one bit or one byte.
PendingMerge mergeOf(const RW_VAR &write);

/// Returns the register that was read, with the bit or the byte replaced.
int mergedRegister(int registerValue, const PendingMerge &merge);
