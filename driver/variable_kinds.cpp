#include "driver/variable_kinds.h"

#include "velko_modbus_rtu.h"

namespace
{

const int AREAS = 3; // kind = AREAS * width class + area index
const int HOLDING_5000_INDEX = AREA_HOLDING_5000 - AREA_INPUT;
const int HOLDING_5000_OFFSET = 5000;

bool isKind(int kind)
{
    return kind >= 0 && kind < KIND_COUNT;
}

} // namespace

WidthClass widthOf(int kind)
{
    return isKind(kind) ? static_cast<WidthClass>(kind / AREAS) : WIDTH_NONE;
}

int getPlcReg(int kind)
{
    return isKind(kind) ? AREA_INPUT + kind % AREAS : kind;
}

int getPlcAdd(int areaOrKind)
{
    return isKind(areaOrKind) && areaOrKind % AREAS == HOLDING_5000_INDEX ? HOLDING_5000_OFFSET : 0;
}
