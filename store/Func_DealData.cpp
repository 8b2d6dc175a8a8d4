#include "store/Func_DealData.h"

#include "bytes/Func_Check.h"
#include "bytes/frame_layout.h"
#include "bytes/wire_order.h"
#include "driver/modbus_rtu_master.h"
#include "store/data_store.h"

void SaveToLocalDataErea(const QByteArray *reply)
{
    const RW_VAR &request = PLC_driver.pendingList.first().var;
    if (request.rmwMark == RMW_READ_HALF) {
        SpecialRegisterSave(reply);
        return;
    }
    const int registers = (reply->size() - READ_REPLY_HEADER_BYTES - CRC_BYTES) / REGISTER_BYTES;
    if (registers <= 0)
        return;
    writeRegisters(areaImage(request.station, request.varKind), request.addr,
                   reply->constData() + READ_REPLY_HEADER_BYTES, registers);
}

void SpecialRegisterSave(const QByteArray *reply)
{
    const PendingMerge &merge = PLC_driver.pendingMerge;
    if (!merge.active || PLC_driver.pendingList.size() < 2
        || reply->size() < READ_REPLY_HEADER_BYTES + REGISTER_BYTES)
        return;
    QByteArray frame =
        PLC_driver.pendingList.at(1).frame.leftJustified(WRITE_HEADER_BYTES, '\0', true);
    putWord(frame, mergedRegister(wordAt(*reply, READ_REPLY_HEADER_BYTES), merge));
    appendCRC(frame);
    PLC_driver.pendingList[1].frame = frame;
}
