// Types that hosts are compiled with but no exported function shows: the variable item, which is
// passed in a QList, and the values of the enumerators. scripts/check-abi describes this library;
// no program loads it.
#include "velko_modbus_rtu.h"

VELKO_API void interfaceTypes(const VAR_ITEM *, VARIABLE_KIND, REGISTER_AREA, REQUEST_DIRECTION,
                              COMM_MODE, QUEUE_MODE, REQUEST_STATUS, RESULT_CODE, LIMIT)
{
}
