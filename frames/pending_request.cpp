#include "frames/pending_request.h"

#include "driver/modbus_rtu_master.h"

namespace
{

void markStart(int frames)
{
    PLC_driver.comInfo->frameTotal = frames;
    PLC_driver.comInfo->frameDone = 0;
}

} // namespace

Protocol requestOf(QByteArray &&frame, const RW_VAR &record, int replyLen, int dataOffset,
                   int dataLen)
{
    Protocol request;
    request.frame.swap(frame);
    request.frameLen = request.frame.size();
    request.replyLen = replyLen;
    request.dataOffset = dataOffset;
    request.dataLen = dataLen;
    request.var = record;
    return request;
}

void queueRequest(const Protocol &only)
{
    PLC_driver.pendingList.append(only);
    markStart(1);
}

void queueRequest(const Protocol &first, const Protocol &second)
{
    PLC_driver.pendingList.append(first);
    PLC_driver.pendingList.append(second);
    markStart(2);
}
