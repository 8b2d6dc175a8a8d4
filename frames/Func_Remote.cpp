#include "frames/Func_Remote.h"

#include "bytes/Func_Check.h"
#include "bytes/frame_layout.h"
#include "bytes/wire_order.h"
#include "frames/pending_request.h"
#include "store/Func_GetOrSetData.h"

namespace
{

QByteArray remoteFrame(const RW_VAR &record, const QByteArray &value)
{
    QByteArray frame;
    putByte(frame, REMOTE_HEADER_BYTES + value.size() + REMOTE_SUM_BYTES);
    putByte(frame, record.ownerId);
    putByte(frame, record.rwFlag);
    putByte(frame, record.areaNo);
    putByte(frame, record.station);
    putWord(frame, record.varKind);
    putLong(frame, record.addr);
    putWord(frame, record.count);
    putLong(frame, record.rmwMark);
    putLong(frame, record.remoteArg);
    frame.append(value);
    appendSum(frame);
    return frame;
}

// Unsigned, so that it wraps for any count that a host can set.
int registerBytes(int count, int overhead)
{
    const unsigned int bytes =
        static_cast<unsigned int>(REGISTER_BYTES) * static_cast<unsigned int>(count);
    return static_cast<int>(bytes + static_cast<unsigned int>(overhead));
}

} // namespace

void Remote_ReadVar(RW_VAR *record)
{
    const int replyLen = registerBytes(record->count, READ_REPLY_HEADER_BYTES + CRC_BYTES);
    queueRequest(requestOf(remoteFrame(*record, QByteArray()), *record, replyLen,
                           READ_REPLY_HEADER_BYTES, registerBytes(record->count, 0)));
}

void Remote_WriteVar(RW_VAR *record)
{
    const int replyLen = record->station == BROADCAST_STATION ? REPLY_LEN_NONE : WRITE_REPLY_BYTES;
    if (record->value.size() <= REMOTE_MOST_VALUE_BYTES)
        queueRequest(requestOf(remoteFrame(*record, record->value), *record, replyLen));
    WriteDataToLocal(record);
}
