#include "frames/Func_Write.h"

#include "bytes/Func_Check.h"
#include "bytes/wire_order.h"
#include "driver/modbus_rtu_master.h"
#include "driver/variable_kinds.h"
#include "frames/Func_Read.h"
#include "store/Func_GetOrSetData.h"

namespace
{

const int WRITE_MULTIPLE_REGISTERS = 0x10;
const int REGISTER_BYTES = 2;
const int REGISTER_BITS = 16;
const int BYTE_BITS = 8;

int registersOf(const RW_VAR &record)
{
    return record.count & 0xFFFF;
}

// A count that only fits once it has wrapped would write less than was asked and be reported done.
bool fitsOneFrame(const RW_VAR &record)
{
    const int most = (LIMIT_FRAME_BYTES - WRITE_HEADER_BYTES - CHECK_BYTES) / REGISTER_BYTES;
    return record.count <= most && registersOf(record) <= most;
}

void queueDirectWrite(const RW_VAR &record)
{
    if (!fitsOneFrame(record))
        return;
    PLC_driver.pendingList.append(WriteBool(record));
    startRequest(1);
}

// The register is read first; its reply completes the write frame queued behind the read.
void queueReadModifyWrite(const RW_VAR &record, int registerNumber, int byteOffset)
{
    RW_VAR half = record;
    half.rwFlag = REQUEST_READ;
    half.count = 1;
    half.rmwMark = RMW_READ_HALF;
    half.addr = registerNumber;
    PLC_driver.pendingList.append(ReadAnalog(half));

    half.rwFlag = REQUEST_WRITE;
    half.rmwMark = 0;
    half.addr = byteOffset;
    half.value = record.value.leftJustified(REGISTER_BYTES, '\0', true);
    PLC_driver.pendingList.append(WriteBool(half));

    PendingMerge &merge = PLC_driver.pendingMerge;
    merge.active = true;
    merge.varKind = record.varKind;
    merge.addr = record.addr;
    merge.value = static_cast<unsigned char>(half.value.at(0));
    startRequest(2);
}

} // namespace

Protocol WriteBool(const RW_VAR &record)
{
    const int registers = registersOf(record);
    const int firstRegister = record.addr / REGISTER_BYTES + getPlcAdd(record.varKind);

    Protocol request;
    request.frame.reserve(WRITE_HEADER_BYTES + REGISTER_BYTES * registers + CHECK_BYTES);
    putByte(request.frame, record.station);
    putByte(request.frame, WRITE_MULTIPLE_REGISTERS);
    putWord(request.frame, firstRegister);
    putWord(request.frame, registers);
    putByte(request.frame, REGISTER_BYTES * registers);
    // A double word needs no order of its own: its low half is its lower register.
    request.frame.append(swappedRegisters(record.value, registers));
    appendCRC(request.frame);

    request.frameLen = request.frame.size();
    request.replyLen = WRITE_REPLY_BYTES;
    request.var = record;
    return request;
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
    default: // the input area, or no kind at all: there is no request that writes it
        break;
    }
    if (PLC_driver.commFailed == 0)
        ShowDeviceWrite(record);
}
