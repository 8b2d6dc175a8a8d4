#include "driver/station_table.h"

#include "driver/modbus_rtu_master.h"

#include <QMutexLocker>

namespace
{

const int DISABLE = 0;
const int ENABLE = 1;

} // namespace

void EnCommStation(int station, int enable)
{
    const QMutexLocker lock(&PLC_driver.stationMutex);
    if (station < 0)
        PLC_driver.stationMap.clear();
    else if (enable == DISABLE)
        PLC_driver.stationMap.insert(station, 0);
    else if (enable == ENABLE)
        PLC_driver.stationMap.remove(station);
}

bool Ethernetcontains(int station)
{
    const QMutexLocker lock(&PLC_driver.stationMutex);
    return PLC_driver.stationMap.contains(station);
}
