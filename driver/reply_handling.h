// What becomes of a request after its reply was judged.
#ifndef DRIVER_REPLY_HANDLING_H
#define DRIVER_REPLY_HANDLING_H

#include "driver/records.h"

/// Copies every field but `value`, which is emptied.
void passRetValue(const RW_VAR &from, RW_VAR &to);

#endif
