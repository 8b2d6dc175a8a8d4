// Rotates a request list, so that each request has its turn.
#pragma once

#include "velko_modbus_rtu.h"

#include <QList>

/// Moves the first request to the end. The list must not be empty. QList::move() would shift the
/// whole list; the average time of this function does not depend on the length of the list.
inline void rotate(QList<RW_VAR> &list)
{
    list.append(list.takeFirst());
}
