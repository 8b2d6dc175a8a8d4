// The one bit or byte that a read-modify-write changes in its register.
#pragma once

#include "driver/records.h"

/// Kept apart from the write queue, to which other threads append while a reply is being saved.
struct PendingMerge {
    bool active = false;
    int varKind = 0;
    int addr = 0;            // linear offset
    unsigned char value = 0; // first value byte of the write
};

/// The merge that a queued write of a bit or a byte stands for.
PendingMerge mergeOf(const RW_VAR &write);

/// The register as it was read, with the bit or the byte in it.
int mergedRegister(int registerValue, const PendingMerge &merge);
