// Turning a request list, so that each request has its turn.
#pragma once

#include "driver/records.h"

/// Makes the first request the last one. The list is not empty. QList::move() would shift the whole
/// list; this takes, on average, as long for a long list as for a short one.
inline void rotate(QList<RW_VAR> &list)
{
    list.append(list.takeFirst());
}
