// The cyclic read list: merges variables into few requests.
#pragma once

#include "velko_modbus_rtu.h"

#include <QList>

// All three work on records in read form (area code, register, count). The caller of
// BitVarReCreat and addressAdd holds listMutex.

/// Sorts by first register. Records with the same first register keep their order.
void Bubble_Sort(QList<RW_VAR> *records);

/// Merges one sorted group of one station and area into requests and appends them to readList. Takes
/// records out of the group.
void BitVarReCreat(QList<RW_VAR> *group, int maxRegs);

/// Appends the record to readList in pieces of exactly maxRegs registers. If `keepRest` is true,
/// the remaining registers follow as a shorter piece. On return the record describes what remains.
void addressAdd(RW_VAR &record, int maxRegs, bool keepRest);
