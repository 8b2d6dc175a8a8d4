#include "tests/driver_under_test.h"

#include <QStringList>

namespace
{

QStringList events;

void onRequestDone(int linkId, int ownerId, int ownerTag, int status)
{
    events += QString("done %1 %2 %3 %4").arg(linkId).arg(ownerId).arg(ownerTag).arg(status);
}

void onCommFail(QList<RW_VAR> variables, int ownerId, int flag)
{
    EXPECT_TRUE(variables.isEmpty());
    events += QString("fail %1 %2").arg(ownerId).arg(flag);
}

} // namespace

DriverUnderTest::DriverUnderTest()
    : driver(DRIVER_LIBRARY),
      core(*static_cast<Modbus_RTU_Master *>(driver.symbol("PLC_driver")))
{
    events.clear();
    link.maxRegs = 32;
    link.defaultStation = 1;
    link.localArea = 4;
    link.commMode = COMM_DEVICE;
    link.linkId = 9;
    driver.SetComInfo(&link);
    driver.RegistCallBackFuncIntf([](int, int, int, int) {}, nullptr); // replaced by the next call
    driver.RegistCallBackFuncIntf(onRequestDone, onCommFail);
}

std::string DriverUnderTest::next()
{
    const Protocol *const request = driver.ComCommunication();
    if (!request)
        return "none";
    EXPECT_EQ(request->frameLen, request->frame.size());
    return hexFrom(request->frame);
}

int DriverUnderTest::answer(const QByteArray &reply, int length)
{
    const RW_VAR *const verdict = driver.DataCom(&reply, length);
    EXPECT_EQ(verdict, &core.retVar);
    return verdict->retCode;
}

int DriverUnderTest::answer(const char *hex)
{
    const QByteArray reply = bytesFrom(hex);
    return answer(reply, reply.size());
}

int DriverUnderTest::rebuild(const char *items)
{
    const QList<VAR_ITEM> list = itemsFrom(items);
    return driver.ReCreatReadVarList(&list);
}

std::string DriverUnderTest::takeEvents()
{
    const QString taken = events.isEmpty() ? "none" : events.join(", ");
    events.clear();
    return taken.toStdString();
}

QList<VAR_ITEM> itemsFrom(const QString &text)
{
    QList<VAR_ITEM> items;
    const QStringList entries = text.split(' ', Qt::SkipEmptyParts);
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

int numberFrom(const char *variable, int otherwise)
{
    const int number = qEnvironmentVariableIntValue(variable);
    return number > 0 ? number : otherwise;
}

QByteArray bytesFrom(const char *hex)
{
    return QByteArray::fromHex(hex);
}

std::string hexFrom(const QByteArray &bytes)
{
    return bytes.toHex(' ').toUpper().toStdString();
}
