// The records that the driver works on. Those shared with the host are defined in the host's
// header, so that there is one definition of each layout.
#pragma once

#include "velko_modbus_rtu.h"

#include <QMap>

/// Element type of the driver's extendList, which nothing fills.
struct EXTENDVAR {
    int first = 0;
    int second = 0;
    int third = 0;
    QByteArray bytes;
};

static_assert(sizeof(EXTENDVAR) == (sizeof(void *) == 4 ? 16 : 24), "EXTENDVAR has changed");

/// RW_VAR::rmwMark of the read half of a read-modify-write.
const int RMW_READ_HALF = -1;

/// RW_VAR::ownerTag of cyclic reads.
const int OWNER_TAG_CYCLIC = -1;

/// Register bytes of one area of one station: byte i of the image is byte i of the area.
typedef QByteArray AreaImage;

/// Station -> area code -> image.
typedef QMap<int, QMap<int, AreaImage>> StationImages;
