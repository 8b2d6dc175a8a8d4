#include "store/Func_DealData.h"

#include "bytes/Func_Check.h"
#include "bytes/wire_order.h"
#include "driver/modbus_rtu_master.h"
#include "driver/variable_kinds.h"
#include "frames/Func_Read.h"
#include "frames/Func_Write.h"
#include "store/data_store.h"

namespace
{

int withBit(int registerValue, const PendingMerge &merge)
{
    const int bit = 1 << (merge.addr & 15);
    return merge.value != 0 ? registerValue | bit : registerValue & ~bit;
}

// An even byte is its register's low byte, an odd one its high byte.
int withByte(int registerValue, const PendingMerge &merge)
{
    return (merge.addr & 1) != 0 ? (registerValue & 0x00FF) | merge.value << 8
                                 : (registerValue & 0xFF00) | merge.value;
}

} // namespace

void SaveToLocalDataErea(const QByteArray *reply)
{
    const RW_VAR &request = PLC_driver.pendingList.first().var;
    if (request.rmwMark == RMW_READ_HALF) {
        SpecialRegisterSave(reply);
        return;
    }
    const int registers = (reply->size() - READ_HEADER_BYTES - CHECK_BYTES) / 2;
    if (registers <= 0)
        return;
    writeRegisters(areaImage(request.station, request.varKind), request.addr,
                   reply->constData() + READ_HEADER_BYTES, registers);
}

void SpecialRegisterSave(const QByteArray *reply)
{
    const PendingMerge &merge = PLC_driver.pendingMerge;
    if (!merge.active || PLC_driver.pendingList.size() < 2 || reply->size() < READ_HEADER_BYTES + 2)
        return;
    const int read = wordAt(*reply, READ_HEADER_BYTES);
    const int merged =
        widthOf(merge.varKind) == WIDTH_BIT ? withBit(read, merge) : withByte(read, merge);
    QByteArray frame = PLC_driver.pendingList.at(1).frame.left(WRITE_HEADER_BYTES);
    putWord(frame, merged);
    appendCRC(frame);
    PLC_driver.pendingList[1].frame = frame;
}
