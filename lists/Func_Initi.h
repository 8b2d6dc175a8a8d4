// The cyclic read list: variables merged into few requests.
#pragma once

#include "driver/records.h"

// All three work on records in read form (area code, register, count). Those that append to
// readList expect listMutex to be held.

/// Sorts by first register; records with equal ones keep their order.
void Bubble_Sort(QList<RW_VAR> *records);

/// Appends the requests that one sorted group of one station and area merges into to readList.
void BitVarReCreat(QList<RW_VAR> *group, int maxRegs);

/// Appends the record to readList in pieces of exactly maxRegs registers; what remains is appended
/// as well with `keepRest`. The record is left describing what remained.
void addressAdd(RW_VAR &record, int maxRegs, bool keepRest);
