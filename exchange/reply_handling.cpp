#include "exchange/reply_handling.h"

#include "driver/modbus_rtu_master.h"
#include "exchange/reply_judgement.h"
#include "exchange/rotation.h"

#include <QMutexLocker>

#include <algorithm>
#include <limits>

namespace
{

const int COMM_FAIL_FLAG = 1;

// The host can set these counters to any number, so they stop at the largest int.
void countUp(int &counter)
{
    if (counter < std::numeric_limits<int>::max())
        ++counter;
}

bool haveSameOwner(const RW_VAR &left, const RW_VAR &right)
{
    return left.ownerId == right.ownerId && left.ownerTag == right.ownerTag;
}

bool isQueuedAgain(const QList<RW_VAR> &list)
{
    for (int i = 1; i < list.size(); ++i) {
        if (haveSameOwner(list.at(i), list.first()))
            return true;
    }
    return false;
}

// --- The end of a request. The caller holds listMutex. ---

void callRequestDone(const RW_VAR &request, REQUEST_STATUS status)
{
    if (PLC_driver.onRequestDone)
        PLC_driver.onRequestDone(PLC_driver.comInfo->linkId, request.ownerId, request.ownerTag,
                                 status);
}

// Reports the result of the head, but not "done" if a later entry of the same owner is queued: that
// entry will report it.
void reportHead(const QList<RW_VAR> &list)
{
    if (PLC_driver.commFailed != 0)
        callRequestDone(list.first(), REQUEST_GIVEN_UP);
    else if (!isQueuedAgain(list))
        callRequestDone(list.first(), REQUEST_DONE);
}

void removeHead(QList<RW_VAR> &list, bool reported)
{
    if (list.isEmpty())
        return;
    if (reported)
        reportHead(list);
    passRetValue(list.first(), PLC_driver.retVar);
    list.removeFirst();
}

void rotateHead(QList<RW_VAR> &list)
{
    if (list.isEmpty())
        return;
    passRetValue(list.first(), PLC_driver.retVar);
    rotate(list);
}

void advanceList(bool local)
{
    switch (PLC_driver.activeSource) {
    case SOURCE_WRITE:
        removeHead(PLC_driver.writeList, true);
        break;
    case SOURCE_ONCE:
        removeHead(PLC_driver.onceReadList, local);
        break;
    case SOURCE_CYCLIC:
        rotateHead(PLC_driver.readList);
        break;
    default:
        break;
    }
}

// Removes the queued entries that have the same owner as the request that was given up.
void purge(QList<RW_VAR> &list)
{
    const bool anyStation = PLC_driver.comInfo->perVarStation == 0;
    const auto goes = [anyStation](const RW_VAR &entry) {
        const RW_VAR &given = PLC_driver.retVar;
        return haveSameOwner(entry, given) && (anyStation || entry.station == given.station);
    };
    list.erase(std::remove_if(list.begin(), list.end(), goes), list.end());
}

void reportGiveUp()
{
    if (PLC_driver.onCommFail)
        PLC_driver.onCommFail(QList<RW_VAR>(), PLC_driver.retVar.ownerId, COMM_FAIL_FLAG);
    if (PLC_driver.activeSource == SOURCE_WRITE)
        purge(PLC_driver.writeList);
    else if (PLC_driver.activeSource == SOURCE_ONCE)
        purge(PLC_driver.onceReadList);
}

int endRequest(int result, bool local)
{
    PLC_driver.pendingMerge = PendingMerge();
    advanceList(local);
    if (PLC_driver.commFailed != 0)
        reportGiveUp();
    return result;
}

// --- After the check of the response. Both return the new retCode. The caller holds listMutex. ---

void countTowardCycle()
{
    ComInfo &info = *PLC_driver.comInfo;
    if (info.cycleDone != 0)
        return;
    ++PLC_driver.cycleCount;
    if (PLC_driver.cycleCount <= PLC_driver.readList.size())
        return;
    PLC_driver.cycleCount = 0;
    info.cycleDone = 1;
}

int afterGoodExchange(int result, bool local)
{
    ComInfo &info = *PLC_driver.comInfo;
    PLC_driver.commFailed = 0;
    PLC_driver.pendingList.removeFirst();
    countUp(info.frameDone);
    // The second test completes a read-modify-write even if the host has called SetComInfo with
    // another record, whose counters differ, between the two frames.
    if (info.frameDone < info.frameTotal || !PLC_driver.pendingList.isEmpty())
        return result;
    if (local)
        countTowardCycle();
    return endRequest(result, local);
}

int afterFailedExchange(int result, bool local)
{
    ComInfo &info = *PLC_driver.comInfo;
    PLC_driver.commFailed = 1;
    PLC_driver.cycleCount = 0;
    info.cycleDone = 0;
    countUp(info.retryCount);
    if (info.retryCount <= info.retryLimit)
        return RESULT_WILL_REPEAT;
    info.retryCount = 0;
    PLC_driver.pendingList.clear();
    return endRequest(result, local);
}

void handleReply(const QByteArray &reply, int length)
{
    const bool local = PLC_driver.pendingList.first().var.areaNo == PLC_driver.comInfo->localArea;
    const int result =
        local ? DealDataOfLocalArea(&reply, length) : DealDataOfRemoteArea(&reply, length);
    const QMutexLocker lock(&PLC_driver.listMutex);
    const int verdict = velko_result_is_good(result) ? afterGoodExchange(result, local)
                                                     : afterFailedExchange(result, local);
    PLC_driver.retVar.retCode = verdict; // last: passRetValue overwrites it
}

} // namespace

void passRetValue(const RW_VAR &from, RW_VAR &to)
{
    to = from;
    to.value.clear();
}

const RW_VAR *DataCom(const QByteArray *reply, int bytesReceived)
{
    PLC_driver.retVar.retCode = RESULT_GOOD;
    if (PLC_driver.comInfo && !PLC_driver.pendingList.isEmpty())
        handleReply(reply ? reply->left(qMax(bytesReceived, 0)) : QByteArray(), bytesReceived);
    return &PLC_driver.retVar;
}
