// A host for one line, compiled and linked only with the files of the packages. It writes a bit,
// which takes a read and a write on the line, and then reads the register.
#include <velko_modbus_rtu.h>

#include <cstdio>

namespace
{

// Expects `request` as the next frame and passes `reply`. Both are hexadecimal.
bool exchange(const char *request, const char *reply)
{
    const Protocol *const next = ComCommunication();
    const QByteArray frame = next ? next->frame : QByteArray();
    const QByteArray answer = QByteArray::fromHex(reply);
    const int verdict = next ? DataCom(&answer, answer.size())->retCode : 0;
    std::printf("%s: %d\n", frame.toHex(' ').constData(), verdict);
    return frame == QByteArray::fromHex(request) && verdict == RESULT_GOOD;
}

} // namespace

int main()
{
    ComInfo info;
    info.maxRegs = 10;
    info.defaultStation = 1;
    info.commMode = COMM_DEVICE;
    SetComInfo(&info);
    VAR_ITEM item;
    item.kind = KIND_HOLDING_DWORD;
    item.addrText = QString::fromLatin1("1");
    item.length = 2;
    QList<VAR_ITEM> items;
    items.append(item);
    const QByteArray on(1, '\1');
    const bool isQueued =
        ReCreatReadVarList(&items) == 1
        && SetRegisterData(QString(), KIND_HOLDING_BIT, QString::fromLatin1("4.5"), 1, &on, 1, 0, 0)
               == 1;
    const bool isDone = isQueued && exchange("01 03 00 02 00 01 25 CA", "01 03 02 00 0A 38 43")
                        && exchange("01 10 00 02 00 01 02 00 2A 26 6D", "01 10 00 02 00 01 A0 09")
                        && exchange("01 03 00 02 00 02 65 CB", "01 03 04 00 2A 00 01 1A 3B");
    QByteArray value;
    GetRegisterData(0, KIND_HOLDING_DWORD, QString::fromLatin1("1"), 1, &value, 2);
    std::printf("double word 1: %s\n", value.toHex(' ').constData());
    return isDone && value == QByteArray::fromHex("2a 00 01 00") ? 0 : 1;
}
