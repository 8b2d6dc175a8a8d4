// The write queue and the one-shot read queue: in checked mode one entry per target and at most
// LIMIT_QUEUE_ENTRIES entries.
#include "lists/request_queues.h"

#include "driver/modbus_rtu_master.h"
#include "driver/own_copy.h"
#include "lists/address_model.h"
#include "lists/register_pieces.h"

#include <QMutexLocker>

namespace
{

const int NOT_QUEUED = -1;

// Compares the address first because it differs between the pieces of a long write, and each piece
// is compared with the whole queue.
bool haveSameRange(const RW_VAR &left, const RW_VAR &right)
{
    return left.addr == right.addr && left.station == right.station && left.varKind == right.varKind
           && left.count == right.count;
}

bool haveSameTarget(const RW_VAR &left, const RW_VAR &right)
{
    return haveSameRange(left, right) && left.ownerId == right.ownerId
           && left.ownerTag == right.ownerTag;
}

int indexOf(const QList<RW_VAR> &queue, const RW_VAR &request, int from,
            bool (*matches)(const RW_VAR &, const RW_VAR &))
{
    for (int i = from; i < queue.size(); ++i) {
        if (matches(queue.at(i), request))
            return i;
    }
    return NOT_QUEUED;
}

void appendWithinCapacity(QList<RW_VAR> &queue, const RW_VAR &request)
{
    if (queue.size() < LIMIT_QUEUE_ENTRIES)
        queue.append(request);
}

// Never overwrites the head, which may be on the line with its old value.
void queueWrite(QList<RW_VAR> &queue, const RW_VAR &request)
{
    const int same = indexOf(queue, request, 1, haveSameRange);
    if (same == NOT_QUEUED)
        appendWithinCapacity(queue, request);
    else
        queue[same] = request;
}

void queueOnceRead(QList<RW_VAR> &queue, const RW_VAR &request)
{
    if (indexOf(queue, request, 0, haveSameTarget) == NOT_QUEUED)
        appendWithinCapacity(queue, request);
}

// Converts the request from the host's form into a register range. Returns false if it is refused.
bool convertOnceRead(RW_VAR &request, const ComInfo &info)
{
    if (info.perVarStation == 0)
        request.station = info.defaultStation;
    const int offset = StringAddressToInt(request.varKind, request.addrText);
    if (offset < 0 || request.station == 0 || request.count < 0)
        return false;
    const RegisterRange range = ToRegisterRange(request.varKind, offset, request.count);
    if (range.count > LIMIT_REGISTERS)
        return false;
    request.rmwMark = 0;
    request.remoteArg = 0;
    request.varKind = range.areaCode;
    request.addr = range.firstRegister;
    request.count = range.count;
    return true;
}

int appendOnceRead(const RW_VAR &own)
{
    const QMutexLocker lock(&PLC_driver.listMutex);
    PLC_driver.onceReadList.append(own);
    return PLC_driver.onceReadList.size();
}

int queuedOnceReads()
{
    const QMutexLocker lock(&PLC_driver.listMutex);
    return PLC_driver.onceReadList.size();
}

} // namespace

int queueOwnWrite(const RW_VAR &own, int mode)
{
    const QMutexLocker lock(&PLC_driver.listMutex);
    QList<RW_VAR> &queue = PLC_driver.writeList;
    if (mode == QUEUE_UNCONDITIONALLY)
        queue.append(own);
    else
        queueWrite(queue, own);
    return queue.size();
}

int AddListWriteVar(const RW_VAR *request, int mode)
{
    if (request)
        return queueOwnWrite(ownRecord(*request), mode);
    const QMutexLocker lock(&PLC_driver.listMutex);
    return PLC_driver.writeList.size();
}

int AddListOnceReadVar(RW_VAR *request, int mode)
{
    if (mode == QUEUE_UNCONDITIONALLY)
        return request ? appendOnceRead(ownRecord(*request)) : queuedOnceReads();
    const ComInfo *const info = PLC_driver.comInfo;
    if (!info)
        return 0;
    if (!request)
        return queuedOnceReads();
    if (!convertOnceRead(*request, *info))
        return 0;

    const RW_VAR whole = ownRecord(*request);
    const RegisterPieces pieces(whole.count, info->maxRegs);
    const QMutexLocker lock(&PLC_driver.listMutex);
    for (int i = 0; i < pieces.count(); ++i) {
        const RW_VAR piece = pieceOf(whole, pieces, i);
        queueOnceRead(PLC_driver.onceReadList, piece);
        request->addr = piece.addr;
        request->count = piece.count;
    }
    return PLC_driver.onceReadList.size();
}
