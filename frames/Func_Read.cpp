#include "frames/Func_Read.h"

#include "bytes/Func_Check.h"
#include "bytes/wire_order.h"
#include "driver/modbus_rtu_master.h"
#include "driver/variable_kinds.h"

namespace
{

const int READ_HOLDING_REGISTERS = 0x03;
const int READ_INPUT_REGISTERS = 0x04;

// Station, function, first register, number of registers, CRC.
const int READ_REQUEST_BYTES = 8;

} // namespace

Protocol ReadAnalog(const RW_VAR &record)
{
    const int registers = record.count & 0xFFFF;
    const int firstRegister = (record.addr & 0xFFFF) + getPlcAdd(record.varKind);

    Protocol request;
    request.frame.reserve(READ_REQUEST_BYTES);
    putByte(request.frame, record.station);
    putByte(request.frame,
            record.varKind == AREA_INPUT ? READ_INPUT_REGISTERS : READ_HOLDING_REGISTERS);
    putWord(request.frame, firstRegister);
    putWord(request.frame, registers);
    appendCRC(request.frame);

    request.frameLen = request.frame.size();
    request.replyLen = READ_HEADER_BYTES + 2 * registers + CHECK_BYTES;
    request.dataOffset = READ_HEADER_BYTES;
    request.dataLen = 2 * registers;
    request.var = record;
    return request;
}

void ReadRegister(RW_VAR *record)
{
    PLC_driver.pendingList.append(ReadAnalog(*record));
    startRequest(1);
}
