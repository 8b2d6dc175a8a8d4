#include "exchange/reply_judgement.h"

#include "bytes/Func_Check.h"
#include "bytes/frame_layout.h"
#include "driver/modbus_rtu_master.h"
#include "exchange/result_codes.h"
#include "store/Func_DealData.h"

#include <QMutexLocker>

namespace
{

bool isMissing(const Protocol &request, int length)
{
    return length == 0 && request.replyLen != REPLY_LEN_NONE;
}

bool isWrongLength(const Protocol &request, int length)
{
    return length < 0 || (length != request.replyLen && request.replyLen != REPLY_LEN_ANY);
}

void save(const QByteArray *reply)
{
    const QMutexLocker lock(&PLC_driver.storeMutex);
    SaveToLocalDataErea(reply);
}

ReplyOutcome judgeLocal(const Protocol &request, const QByteArray *reply, int length)
{
    if (isMissing(request, length))
        return OUTCOME_LOCAL_NO_REPLY;
    if (isWrongLength(request, length))
        return OUTCOME_LOCAL_WRONG_LENGTH;
    switch (CheckGetData(reply, length)) {
    case REPLY_TO_READ:
        save(reply);
        return OUTCOME_GOOD;
    case REPLY_TO_WRITE:
        return OUTCOME_GOOD;
    default:
        return OUTCOME_LOCAL_BAD_REPLY;
    }
}

ReplyOutcome judgeRemote(const Protocol &request, const QByteArray *reply, int length)
{
    if (isMissing(request, length))
        return OUTCOME_REMOTE_NO_REPLY;
    if (isWrongLength(request, length))
        return OUTCOME_REMOTE_WRONG_LENGTH;
    if (CheckGetData(reply, length) == REPLY_INVALID)
        return OUTCOME_REMOTE_BAD_REPLY;
    if (request.var.rmwMark != RMW_READ_HALF)
        return OUTCOME_REMOTE_NOT_STORED;
    save(reply);
    return PLC_driver.comInfo->frameDone == 1 ? OUTCOME_REMOTE_NOT_STORED : OUTCOME_GOOD;
}

} // namespace

int DealDataOfLocalArea(const QByteArray *reply, int length)
{
    return GetDriverReturnValue(judgeLocal(PLC_driver.pendingList.first(), reply, length));
}

int DealDataOfRemoteArea(const QByteArray *reply, int length)
{
    return GetDriverReturnValue(judgeRemote(PLC_driver.pendingList.first(), reply, length));
}
