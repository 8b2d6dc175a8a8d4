// What hosts are compiled with though no exported function shows it: the variable item, which travels
// inside a QList, and the numbers behind the names. Built to be described by scripts/check-abi, never
// loaded.
#include "velko_modbus_rtu.h"

VELKO_API void interfaceTypes(const VAR_ITEM *, VARIABLE_KIND, REGISTER_AREA, REQUEST_DIRECTION,
                              COMM_MODE, QUEUE_MODE, REQUEST_STATUS, RESULT_CODE, LIMIT)
{
}
