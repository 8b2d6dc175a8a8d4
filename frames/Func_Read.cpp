#include "frames/Func_Read.h"

#include "bytes/Func_Check.h"
#include "bytes/frame_layout.h"
#include "bytes/wire_order.h"
#include "driver/variable_kinds.h"
#include "frames/pending_request.h"

#include <utility>

Protocol ReadAnalog(const RW_VAR &record)
{
    const int registers = record.count & 0xFFFF;
    const int function =
        record.varKind == AREA_INPUT ? READ_INPUT_REGISTERS : READ_HOLDING_REGISTERS;

    QByteArray frame;
    frame.reserve(READ_REQUEST_BYTES);
    putByte(frame, record.station);
    putByte(frame, function);
    putWord(frame, (record.addr & 0xFFFF) + getPlcAdd(record.varKind));
    putWord(frame, registers);
    appendCRC(frame);

    const int dataLen = REGISTER_BYTES * registers;
    return requestOf(std::move(frame), record, READ_REPLY_HEADER_BYTES + dataLen + CRC_BYTES,
                     READ_REPLY_HEADER_BYTES, dataLen);
}

void ReadRegister(RW_VAR *record)
{
    queueRequest(ReadAnalog(*record));
}
