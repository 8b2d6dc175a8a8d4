// The records of the driver. The host's header defines those that are shared with the host, so that
// each layout has one definition.
#pragma once

#include "velko_modbus_rtu.h"

#include <QByteArray>
#include <QMap>

/// Element type of the driver's extendList. Nothing fills that list.
struct EXTENDVAR {
    int first = 0;
    int second = 0;
    int third = 0;
    QByteArray bytes;
};

static_assert(sizeof(EXTENDVAR) == (sizeof(void *) == 4 ? 16 : 24), "EXTENDVAR has changed");

/// RW_VAR::rmwMark in the read half of a read-modify-write.
const int RMW_READ_HALF = -1;

/// RW_VAR::ownerTag in cyclic reads.
const int OWNER_TAG_CYCLIC = -1;

/// The register bytes of one area of one station. Byte i of the image is byte i of the area.
typedef QByteArray AreaImage;

/// Station -> area code -> image.
typedef QMap<int, QMap<int, AreaImage>> StationImages;
