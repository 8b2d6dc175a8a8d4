#include "frames/Func_Remote.h"

#include "bytes/Func_Check.h"
#include "bytes/wire_order.h"
#include "driver/modbus_rtu_master.h"
#include "frames/Func_Read.h"
#include "frames/Func_Write.h"
#include "store/Func_GetOrSetData.h"

namespace
{

const int LENGTH_OFFSET = 0;
// Length 1, ownerId 1, direction 1, area 1, station 1, kind 2, address 4, count 2, mark 4,
// argument 4.
const int REMOTE_HEADER_BYTES = 21;
const int SUM_BYTES = 1;

QByteArray remoteFrame(const RW_VAR &record, const QByteArray &value)
{
    QByteArray frame;
    putByte(frame, 0); // the length, once it is known
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
    frame[LENGTH_OFFSET] = static_cast<char>((frame.size() + SUM_BYTES) & 0xFF);
    putByte(frame, CalSUM(reinterpret_cast<const unsigned char *>(frame.constData()),
                          static_cast<unsigned short>(frame.size())));
    return frame;
}

void queueRemote(const RW_VAR &record, const QByteArray &value, int replyLen, int dataOffset,
                 int dataLen)
{
    Protocol request;
    request.frame = remoteFrame(record, value);
    request.frameLen = request.frame.size();
    request.replyLen = replyLen;
    request.dataOffset = dataOffset;
    request.dataLen = dataLen;
    request.var = record;
    PLC_driver.pendingList.append(request);
    startRequest(1);
}

// Two bytes per register, for any count that a host can put in: it wraps instead of overflowing.
int registerBytes(int count)
{
    return static_cast<int>(2U * static_cast<unsigned int>(count));
}

} // namespace

void Remote_ReadVar(RW_VAR *record)
{
    const int dataLen = registerBytes(record->count);
    const unsigned int replyLen =
        static_cast<unsigned int>(dataLen) + READ_HEADER_BYTES + CHECK_BYTES;
    queueRemote(*record, QByteArray(), static_cast<int>(replyLen), READ_HEADER_BYTES, dataLen);
}

void Remote_WriteVar(RW_VAR *record)
{
    const int room = LIMIT_FRAME_BYTES - REMOTE_HEADER_BYTES - SUM_BYTES;
    if (record->value.size() <= room)
        queueRemote(*record, record->value,
                    record->station == 0 ? REPLY_LEN_NONE : WRITE_REPLY_BYTES, 0, 0);
    ShowDeviceWrite(record);
}
