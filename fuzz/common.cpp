#include "fuzz/common.h"

#include "bytes/Func_Check.h"
#include "driver/modbus_rtu_master.h"

#include <QLocale>

#include <new>

Input::Input(const uint8_t *bytes, size_t size) : FuzzedDataProvider(bytes, size)
{
    PLC_driver.~Modbus_RTU_Master();
    new (&PLC_driver) Modbus_RTU_Master;
    DataStorage.clear();
    // One locale with its own digits.
    QLocale::setDefault(ConsumeBool() ? QLocale(QLocale::Arabic, QLocale::Egypt) : QLocale::c());
    RegistCallBackFuncIntf([](int, int, int, int) {}, [](QList<RW_VAR>, int, int) {});
    setComInfo();
}

int Input::number(int low, int high)
{
    const int edges[] = {0, 1, 123, 32764, 65536, 1 << 20, 1 << 24, 1 << 27, 1 << 30};
    const int choice = below(16);
    if (choice == 15)
        return ConsumeIntegral<int>();
    return choice == 14 ? edges[below(9)] + below(5) - 2 : ConsumeIntegralInRange(low, high);
}

// A long value is cut into up to a million pieces, each of which is compared with a full queue. So
// an input has at most one, with a limited number of pieces.
int Input::length(int kind)
{
    const int units = number(0, 40);
    if (units <= 1000)
        return units;
    const bool isPieces =
        kind < KIND_INPUT_WORD || !PLC_driver.comInfo || PLC_driver.comInfo->maxRegs < 50;
    const bool isStored = PLC_driver.comInfo && PLC_driver.comInfo->commMode != COMM_DEVICE;
    const int most = m_hadLong ? 1000 : isPieces && !isStored ? 20000 : units;
    m_hadLong = true;
    return qMin(units, most);
}

QString Input::address(int kind)
{
    const int choice = below(8);
    const QByteArray text = choice < 6 ? QByteArray() : bytes();
    if (choice == 6)
        return QString::fromUtf8(text);
    if (choice == 7)
        return QString(reinterpret_cast<const QChar *>(text.constData()), text.size() / 2);
    const QString start = QString::number(number(0, 100));
    return kind < KIND_INPUT_BYTE ? start + QLatin1Char('.') + QString::number(below(20)) : start;
}

QByteArray Input::bytes()
{
    const QByteArray start = QByteArray::fromStdString(ConsumeRandomLengthString(20));
    // Sometimes about as many bytes as the longest remote frame holds.
    return below(32) == 31 ? start.leftJustified(65513 + below(2), 'z') : start;
}

RW_VAR Input::record()
{
    RW_VAR record;
    record.ownerId = number(0, 12);
    record.ownerTag = number(-1, 1);
    record.rwFlag = number(0, 1);
    record.areaNo = number(0, 1);
    record.varKind = number(0, KIND_COUNT - 1);
    record.addrText = address(record.varKind);
    record.addr = number(0, 100);
    record.station = number(0, 3);
    record.count = length(record.varKind);
    record.rmwMark = number(-1, 2);
    record.value = bytes();
    return record;
}

QList<VAR_ITEM> Input::items()
{
    QList<VAR_ITEM> items;
    for (int left = below(9); left > 0; --left) {
        VAR_ITEM item;
        item.kind = static_cast<unsigned char>(number(0, KIND_COUNT - 1));
        item.addrText = address(item.kind);
        item.length = length(item.kind);
        items.append(item);
    }
    return items;
}

void Input::setComInfo()
{
    ComInfo &info = m_links[below(2)];
    info.maxRegs = number(1, 125);
    info.defaultStation = number(0, 3);
    info.retryLimit = number(0, 2);
    info.retryCount = number(0, 2);
    info.perVarStation = below(2);
    info.remoteMode = below(4) / 3;
    info.localArea = below(2);
    info.commMode = below(2) * COMM_DEVICE;
    SetComInfo(below(8) == 7 ? nullptr : &info);
}

std::pair<qint64, qint64> registersOf(int kind, qint64 offset, qint64 length)
{
    const int unitBits[] = {1, 8, 16, 16};
    const int width = qBound(0, kind / 3, 3);
    const qint64 bit = width == 0 ? offset : 8 * offset;
    const qint64 units = width == 3 ? (length + 1) / 2 * 2 : length;
    return {bit / 16, (bit + units * unitBits[width] + 15) / 16};
}

void exchange(Input &input)
{
    const Protocol *const asked = ComCommunication();
    const ComInfo *const info = PLC_driver.comInfo;
    const bool waits = info && !PLC_driver.pendingList.isEmpty();
    assert((asked != nullptr) == waits);
    assert(PLC_driver.pendingList.size() <= 2);
    const Protocol request = waits ? *asked : Protocol();
    assert(request.frameLen == request.frame.size() && request.frameLen <= LIMIT_FRAME_BYTES);

    const int how = input.below(4); // 0 and 1: good, 2: damaged, 3: any bytes
    QByteArray reply = input.bytes();
    if (how < 3 && request.replyLen > 0)
        appendCRC(reply = reply.leftJustified(qBound(0, request.replyLen - 2, 65533), 'z', true));
    else if (how < 3)
        reply.clear();
    const int damaged = reply.isEmpty() ? 0 : input.below(reply.size());
    if (how == 2 && !reply.isEmpty())
        reply[damaged] = static_cast<char>(reply.at(damaged) ^ 1 << input.below(8));
    const int received = input.below(4) == 3 ? input.number(-1, 12) : reply.size();
    const bool isWhole = received == reply.size() && received == request.replyLen;
    const bool isBad =
        received < 0 || received > reply.size() || (how == 2 && isWhole && received > 0);

    const StationImages before = DataStorage;
    const int verdict = DataCom(reply.isEmpty() ? nullptr : &reply, received)->retCode;
    const bool isGood = velko_result_is_good(verdict);
    const bool isReadOrWrite = request.var.rwFlag == 0 || request.var.rwFlag == 1;
    assert(!waits || (isGood ? !isBad : how > 1 || !isWhole || !isReadOrWrite));
    assert((waits && verdict == RESULT_GOOD) || DataStorage == before);
    if (verdict == RESULT_WILL_REPEAT)
        assert(ComCommunication()->frame == request.frame);
    else
        assert(isGood || (verdict >= 11 && verdict <= 182 && PLC_driver.pendingList.isEmpty()));
}

void queue(Input &input)
{
    RW_VAR record = input.record();
    const int mode = input.below(2);
    const int list = input.below(3);
    QList<RW_VAR> *const lists[] = {&PLC_driver.readList, &PLC_driver.onceReadList,
                                    &PLC_driver.writeList};
    const int before = lists[list]->size();
    const int result = list == 0   ? AddListReadVar(&record)
                       : list == 1 ? AddListOnceReadVar(&record, mode)
                                   : AddListWriteVar(&record, mode);
    const int after = lists[list]->size();
    const bool isChecked = list > 0 && mode == QUEUE_CHECKED;
    assert(result == after || (isChecked && result == 0 && after == before));
    assert(after <= (isChecked ? qMax<int>(before, LIMIT_QUEUE_ENTRIES) : before + 1));
}
