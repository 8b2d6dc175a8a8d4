#include "frames/Func_Write.h"

#include "bytes/Func_Check.h"
#include "bytes/frame_layout.h"
#include "bytes/wire_order.h"
#include "driver/modbus_rtu_master.h"
#include "driver/variable_kinds.h"
#include "frames/Func_Read.h"
#include "frames/pending_request.h"
#include "store/Func_GetOrSetData.h"

#include <utility>

namespace
{

int registersOf(const RW_VAR &record)
{
    return record.count & 0xFFFF;
}

// Both tests are needed: a count that fits only modulo 65,536 would write fewer registers than
// requested and still be reported as done.
bool fitsOneFrame(const RW_VAR &record)
{
    return record.count <= WRITE_MOST_REGISTERS && registersOf(record) <= WRITE_MOST_REGISTERS;
}

void queueDirectWrite(const RW_VAR &record)
{
    if (fitsOneFrame(record))
        queueRequest(WriteBool(record));
}

// Queues a read of the register, then the write. The read response completes the write frame.
void queueReadModifyWrite(const RW_VAR &record, int registerNumber, int byteOffset)
{
    RW_VAR half = record;
    half.rwFlag = REQUEST_READ;
    half.count = 1;
    half.rmwMark = RMW_READ_HALF;
    half.addr = registerNumber;
    const Protocol read = ReadAnalog(half);

    half.rwFlag = REQUEST_WRITE;
    half.rmwMark = 0;
    half.addr = byteOffset;
    half.value = record.value.leftJustified(REGISTER_BYTES, '\0', true);
    queueRequest(read, WriteBool(half));
    PLC_driver.pendingMerge = mergeOf(record);
}

} // namespace

Protocol WriteBool(const RW_VAR &record)
{
    const int registers = registersOf(record);
    const int dataLen = REGISTER_BYTES * registers;

    QByteArray frame;
    frame.reserve(WRITE_HEADER_BYTES + dataLen + CRC_BYTES);
    putByte(frame, record.station);
    putByte(frame, WRITE_MULTIPLE_REGISTERS);
    putWord(frame, record.addr / REGISTER_BYTES + getPlcAdd(record.varKind));
    putWord(frame, registers);
    putByte(frame, dataLen);
    // Double words need no order of their own: the lower register holds the low half.
    frame.append(swappedRegisters(record.value, registers));
    appendCRC(frame);
    return requestOf(std::move(frame), record, WRITE_REPLY_BYTES);
}

void WriteRegister(RW_VAR *record)
{
    switch (record->varKind) {
    case KIND_HOLDING_WORD:
    case KIND_HOLDING_5000_WORD:
    case KIND_HOLDING_DWORD:
    case KIND_HOLDING_5000_DWORD:
        queueDirectWrite(*record);
        break;
    case KIND_HOLDING_BYTE:
    case KIND_HOLDING_5000_BYTE:
        queueReadModifyWrite(*record, record->addr / REGISTER_BYTES, record->addr);
        break;
    case KIND_HOLDING_BIT:
    case KIND_HOLDING_5000_BIT:
        queueReadModifyWrite(*record, record->addr / REGISTER_BITS, record->addr / BYTE_BITS);
        break;
    default: // the input area or an unknown kind: no Modbus request writes it
        break;
    }
    if (PLC_driver.commFailed == 0)
        WriteDataToLocal(record);
}
