// Address texts, linear offsets and register ranges. Pure functions: any thread, no lock.
#pragma once

#include <QString>

/// Consecutive registers of one area. The area's offset on the line is not yet added.
struct RegisterRange {
    int areaCode;
    int firstRegister;
    int count; ///< registers; may be 0 or less if the length is
};

/// Returns the linear offset of an address text, in bits for the bit kinds and in bytes for the
/// others. Any negative result marks an invalid address.
int StringAddressToInt(int kind, const QString &text);

/// Returns all registers that hold a part of a variable. `kind` is 0 to 11, `offset` is linear and
/// not negative, `length` is any number of the kind's units.
RegisterRange ToRegisterRange(int kind, int offset, int length);

/// Returns true if the variable covers more than LIMIT_REGISTERS registers.
bool passesRegisterLimit(int kind, int offset, int length);
