#include "store/Func_GetOrSetData.h"

#include "driver/modbus_rtu_master.h"
#include "driver/own_copy.h"
#include "driver/units.h"
#include "driver/variable_kinds.h"
#include "lists/address_model.h"
#include "lists/register_pieces.h"
#include "lists/request_queues.h"
#include "store/data_store.h"

#include <QMutexLocker>

#include <cstring>
#include <limits>

namespace
{

// Returns the size of `length` units in the image, in bytes. Not for bits.
qint64 imageBytes(WidthClass width, qint64 length)
{
    switch (width) {
    case WIDTH_BYTE:
        return length;
    case WIDTH_WORD:
        return REGISTER_BYTES * length;
    case WIDTH_DWORD:
        return DWORD_BYTES * ((length + DWORD_REGISTERS - 1) / DWORD_REGISTERS);
    default:
        return 0;
    }
}

// --- Reading ---

// Returns the size of `length` units in the host's output, in bytes. `length` is at least 1.
int outputBytes(WidthClass width, int length)
{
    switch (width) {
    case WIDTH_BIT:
        return length;
    case WIDTH_BYTE: // hosts expect twice the length, with zeros in the second half
        return 2 * length;
    default:
        return static_cast<int>(imageBytes(width, length));
    }
}

void readBits(const AreaImage &image, qint64 offset, int length, char *to)
{
    for (int i = 0; i < length; ++i) {
        const qint64 bit = offset + i;
        to[i] = static_cast<char>(readByte(image, bit / BYTE_BITS) >> bit % BYTE_BITS & 1);
    }
}

void readUnits(const AreaImage &image, WidthClass width, int offset, int length, char *to)
{
    if (width == WIDTH_BIT)
        readBits(image, offset, length, to);
    else
        readBytes(image, offset, static_cast<int>(imageBytes(width, length)), to);
}

// --- Writing ---

// Returns a deep copy, because the whole value is the host's.
QByteArray partOf(const QByteArray &value, int start, int length)
{
    QByteArray part(length, '\0');
    const int given = qMin(length, value.size() - start);
    if (given > 0)
        std::memcpy(part.data(), value.constData() + start, static_cast<size_t>(given));
    return part;
}

// Returns true if the linear offset of the last piece does not fit an int. `last` is its distance
// from `offset`.
bool leavesInt(int offset, int last)
{
    return offset > std::numeric_limits<int>::max() - last;
}

int queuePiece(RW_VAR &record, int addr, int count, const QByteArray &value)
{
    record.addr = addr;
    record.count = count;
    record.value = value;
    const int queued = queueOwnWrite(record, QUEUE_CHECKED);
    // While exchanges fail, the frame builder does not update the store, so this function does.
    if (PLC_driver.commFailed != 0)
        WriteDataToLocal(&record);
    return queued;
}

int queueSingles(RW_VAR &record, int offset, int length, const QByteArray &value)
{
    if (length < 1 || leavesInt(offset, length - 1))
        return 0;
    int queued = 0;
    for (int i = 0; i < length; ++i)
        queued = queuePiece(record, offset + i, 1, partOf(value, i, 1));
    return queued;
}

int queueRegisters(RW_VAR &record, int offset, int registers, const QByteArray &value)
{
    const RegisterPieces pieces(registers, PLC_driver.comInfo->maxRegs);
    if (pieces.count() < 1 || leavesInt(offset, REGISTER_BYTES * pieces.start(pieces.count() - 1)))
        return 0;
    int queued = 0;
    for (int i = 0; i < pieces.count(); ++i) {
        const int start = REGISTER_BYTES * pieces.start(i);
        const int count = pieces.size(i);
        queued =
            queuePiece(record, offset + start, count, partOf(value, start, REGISTER_BYTES * count));
    }
    return queued;
}

int writeToDevice(RW_VAR &record, int offset, int length, const QByteArray &value)
{
    if (PLC_driver.comInfo->remoteMode == 0 && getPlcReg(record.varKind) == AREA_INPUT)
        return 0; // no Modbus request writes this area
    const WidthClass width = widthOf(record.varKind);
    if (width == WIDTH_BIT || width == WIDTH_BYTE)
        return queueSingles(record, offset, length, value);
    const int registers = ToRegisterRange(record.varKind, offset, length).count;
    return queueRegisters(record, offset, registers, value);
}

int writeToStore(RW_VAR &record, int offset, int length, const QByteArray &value)
{
    record.addr = offset;
    record.count = length;
    record.value = value;
    WriteDataToLocal(&record);
    return 1;
}

} // namespace

void WriteDataToLocal(const RW_VAR *record)
{
    const WidthClass width = widthOf(record->varKind);
    if (width == WIDTH_NONE)
        return;
    const QMutexLocker lock(&PLC_driver.storeMutex);
    AreaImage &image = areaImage(record->station, getPlcReg(record->varKind));
    if (width == WIDTH_BIT)
        writeBits(image, record->addr, record->count, record->value);
    else
        writeBytes(image, record->addr, imageBytes(width, record->count), record->value);
}

int GetRegisterData(int, int kind, const QString &addrText, int station, QByteArray *output,
                    int length)
{
    const int offset = StringAddressToInt(kind, addrText);
    if (!output || offset < 0 || passesRegisterLimit(kind, offset, length))
        return 0;
    const WidthClass width = widthOf(kind);
    // Allocated before the lock is taken, and the old contents of `output` are freed after the lock
    // is released, so the communication loop waits only while the value is copied.
    QByteArray value = length > 0 ? QByteArray(outputBytes(width, length), '\0') : QByteArray();
    const QMutexLocker lock(&PLC_driver.storeMutex);
    const AreaImage &image = areaImage(station, getPlcReg(kind));
    if (length > 0)
        readUnits(image, width, offset, length, value.data());
    output->swap(value);
    return 1;
}

int SetRegisterData(const QString &varName, int kind, const QString &addrText, int station,
                    const QByteArray *value, int length, int ownerId, int ownerTag)
{
    const ComInfo *const info = PLC_driver.comInfo;
    if (!info || !value)
        return 0;
    const int offset = StringAddressToInt(kind, addrText);
    if (offset < 0 || passesRegisterLimit(kind, offset, length))
        return 0;

    RW_VAR record;
    record.ownerId = ownerId;
    record.ownerTag = ownerTag;
    record.rwFlag = REQUEST_WRITE;
    record.linkMode = info->remoteMode;
    record.areaNo = info->localArea;
    record.varName = ownText(varName);
    record.addrText = ownText(addrText);
    record.varKind = kind;
    record.station = info->perVarStation != 0 ? station : info->defaultStation;
    return info->commMode == COMM_DEVICE ? writeToDevice(record, offset, length, *value)
                                         : writeToStore(record, offset, length, *value);
}
