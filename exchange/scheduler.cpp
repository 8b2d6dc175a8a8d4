// Which request goes out next: writes, then one-shot reads, then the cyclic list.
#include "driver/modbus_rtu_master.h"
#include "driver/station_table.h"
#include "exchange/rotation.h"
#include "frames/Func_Read.h"
#include "frames/Func_Remote.h"
#include "frames/Func_Write.h"

#include <QMutexLocker>

namespace
{

// Turns in a row that writes, and one-shot reads, get before the cyclic list has its turn.
const int BURST_LIMIT = 5;

typedef void (*FrameBuilder)(RW_VAR *record);

FrameBuilder readBuilder()
{
    return PLC_driver.comInfo->remoteMode != 0 ? Remote_ReadVar : ReadRegister;
}

FrameBuilder writeBuilder()
{
    return PLC_driver.comInfo->remoteMode != 0 ? Remote_WriteVar : WriteRegister;
}

// Builds the request of the first record whose station is enabled and brings that record to the
// head by rotating the list. A record that gets no frame is removed, since no reply would ever take
// it off. Each record is looked at once. Returns whether a request was built.
bool serveHead(QList<RW_VAR> &list, FrameBuilder build)
{
    for (int left = list.size(); left > 0; --left) {
        if (Ethernetcontains(list.first().station)) {
            rotate(list);
            continue;
        }
        build(&list.first());
        if (!PLC_driver.pendingList.isEmpty())
            return true;
        list.removeFirst();
    }
    return false;
}

bool serveBurst(QList<RW_VAR> &list, int &burst, RequestSource source, FrameBuilder build)
{
    if (list.isEmpty() || burst >= BURST_LIMIT)
        return false;
    PLC_driver.activeSource = source;
    ++burst;
    return serveHead(list, build);
}

void resetBursts()
{
    PLC_driver.writeBurst = 0;
    PLC_driver.onceBurst = 0;
}

bool serveCyclic()
{
    if (PLC_driver.readList.isEmpty())
        return false;
    PLC_driver.activeSource = SOURCE_CYCLIC;
    resetBursts();
    return serveHead(PLC_driver.readList, readBuilder());
}

bool buildNextRequest()
{
    Modbus_RTU_Master &driver = PLC_driver;
    return serveBurst(driver.writeList, driver.writeBurst, SOURCE_WRITE, writeBuilder())
           || serveBurst(driver.onceReadList, driver.onceBurst, SOURCE_ONCE, readBuilder())
           || serveCyclic();
}

} // namespace

const Protocol *ComCommunication(void)
{
    ComInfo *const info = PLC_driver.comInfo;
    if (!info)
        return nullptr;
    if (PLC_driver.pendingList.isEmpty()) {
        const QMutexLocker lock(&PLC_driver.listMutex);
        if (!buildNextRequest()) {
            resetBursts();
            info->cycleDone = 1;
            return nullptr;
        }
    }
    return &PLC_driver.pendingList.first();
}
