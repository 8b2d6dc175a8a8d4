#include "tests/driver_test.h"

#include <QStringList>

namespace
{

DriverTest *current = nullptr;
std::vector<std::string> *currentEvents = nullptr;

void onRequestDone(int linkId, int ownerId, int ownerTag, int status)
{
    currentEvents->push_back("done " + std::to_string(linkId) + " " + std::to_string(ownerId) + " "
                             + std::to_string(ownerTag) + " " + std::to_string(status));
}

void onCommFail(QList<RW_VAR> variables, int ownerId, int flag)
{
    EXPECT_TRUE(variables.isEmpty());
    currentEvents->push_back("fail " + std::to_string(ownerId) + " " + std::to_string(flag));
}

} // namespace

DriverTest::DriverTest()
    : driver(DRIVER_LIBRARY),
      core(*static_cast<Modbus_RTU_Master *>(driver.symbol("PLC_driver")))
{
    EXPECT_EQ(current, nullptr);
    current = this;
    currentEvents = &events;
    info.maxRegs = 32;
    info.defaultStation = 1;
    info.localArea = 4;
    info.commMode = COMM_DEVICE;
    info.linkId = 9;
    driver.SetComInfo(&info);
    driver.RegistCallBackFuncIntf(onRequestDone, onCommFail);
}

DriverTest::~DriverTest()
{
    current = nullptr;
}

std::string DriverTest::next()
{
    const Protocol *const request = driver.ComCommunication();
    if (!request)
        return std::string();
    EXPECT_EQ(request->frameLen, request->frame.size());
    return hexFrom(request->frame);
}

std::string DriverTest::next(size_t bytes)
{
    const std::string frame = next();
    return frame.empty() ? frame : frame.substr(0, 3 * bytes - 1);
}

int DriverTest::answer(const char *hex)
{
    return answer(hex, bytesFrom(hex).size());
}

int DriverTest::answer(const char *hex, int length)
{
    const QByteArray reply = bytesFrom(hex);
    const RW_VAR *const verdict = driver.DataCom(&reply, length);
    EXPECT_EQ(verdict, &core.retVar);
    EXPECT_TRUE(verdict->value.isEmpty());
    return verdict->retCode;
}

std::string DriverTest::serve(size_t bytes)
{
    const std::string first = next(bytes);
    for (int frames = 0; frames < 2 && !core.pendingList.isEmpty(); ++frames) {
        next();
        const bool isWrite = core.pendingList.first().replyLen == 8;
        EXPECT_EQ(answer(isWrite ? GOOD_WRITE : GOOD_READ), RESULT_GOOD);
    }
    return first;
}

int DriverTest::rebuild(const char *items)
{
    const QList<VAR_ITEM> list = itemsFrom(items);
    return driver.ReCreatReadVarList(&list);
}

RW_VAR DriverTest::write(int kind, int addr, int count, const char *value, int ownerId,
                         int ownerTag) const
{
    RW_VAR record;
    record.ownerId = ownerId;
    record.ownerTag = ownerTag;
    record.rwFlag = REQUEST_WRITE;
    record.areaNo = info.localArea;
    record.varKind = kind;
    record.addr = addr;
    record.station = 1;
    record.count = count;
    record.value = bytesFrom(value);
    return record;
}

RW_VAR DriverTest::read(int area, int firstRegister, int count) const
{
    RW_VAR record;
    record.areaNo = info.localArea;
    record.varKind = area;
    record.addr = firstRegister;
    record.station = 1;
    record.count = count;
    return record;
}

RW_VAR DriverTest::once(int kind, const char *text, int length) const
{
    RW_VAR record = read(kind, 0, length);
    record.addrText = QString::fromLatin1(text);
    return record;
}

std::string DriverTest::stored(int kind, const char *text, int length, int station)
{
    QByteArray output("untouched");
    const int result =
        driver.GetRegisterData(0, kind, QString::fromLatin1(text), station, &output, length);
    return result == 1 ? hexFrom(output) : "refused " + output.toStdString();
}

int DriverTest::set(int kind, const char *text, const char *value, int length, int ownerId,
                    int ownerTag)
{
    const QByteArray bytes = bytesFrom(value);
    return driver.SetRegisterData(QStringLiteral("name"), kind, QString::fromLatin1(text), 1,
                                  &bytes, length, ownerId, ownerTag);
}

QList<VAR_ITEM> itemsFrom(const char *text)
{
    QList<VAR_ITEM> items;
    const QStringList entries = QString::fromLatin1(text).split(' ', Qt::SkipEmptyParts);
    for (const QString &entry : entries) {
        const QStringList fields = entry.split(':');
        VAR_ITEM item;
        item.kind = static_cast<unsigned char>(fields.at(0).toInt());
        item.addrText = fields.at(1);
        item.varName = entry;
        item.length = fields.at(2).toInt();
        items.append(item);
    }
    return items;
}

std::string rangesOf(const QList<RW_VAR> &list)
{
    QStringList ranges;
    for (const RW_VAR &record : list)
        ranges.append(QStringLiteral("%1[%2,%3)")
                          .arg(record.varKind)
                          .arg(record.addr)
                          .arg(record.addr + record.count));
    return ranges.join(' ').toStdString();
}

QByteArray bytesFrom(const char *hex)
{
    return QByteArray::fromHex(hex);
}

std::string hexFrom(const QByteArray &bytes)
{
    return bytes.toHex(' ').toUpper().toStdString();
}
