// Address texts, linear offsets and register ranges. Pure computation: any thread, no lock.
#pragma once

#include <QString>

/// A run of registers of one area, numbered before the area's offset on the line is added.
struct RegisterRange {
    int areaCode;
    int firstRegister;
    int count; ///< registers; 0 or less for a length of nothing
};

/// The linear offset of an address text: bits for the bit kinds, bytes for the others. Negative, -1
/// or another number, for an address that is to be refused.
int StringAddressToInt(int kind, const QString &text);

/// The registers that hold any part of a variable. `kind` is 0 to 11, `offset` (linear) not
/// negative, `length` any number of the kind's units.
RegisterRange ToRegisterRange(int kind, int offset, int length);

/// True when a length covers more registers than one call may name (LIMIT_REGISTERS).
bool passesRegisterLimit(int kind, int offset, int length);
