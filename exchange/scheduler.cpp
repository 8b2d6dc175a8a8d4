// Selects the next request: writes, then one-shot reads, then the cyclic list.
#include "driver/modbus_rtu_master.h"
#include "driver/station_table.h"
#include "exchange/rotation.h"
#include "frames/Func_Read.h"
#include "frames/Func_Remote.h"
#include "frames/Func_Write.h"

#include <QMutexLocker>

namespace
{

// Maximum number of turns of the write queue, and of the one-shot queue, between two turns of the
// cyclic list.
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

// Rotates the list until the head's station is enabled, then builds the head's request. Removes a
// record for which no frame is built, because no response would ever remove it. Visits each record
// at most once. Returns whether a request was built.
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
