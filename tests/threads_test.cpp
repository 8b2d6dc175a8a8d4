// Host threads beside the communication loop.
#include "tests/driver_under_test.h"

#include <atomic>
#include <thread>

using ThreadsTest = DriverTest;

// Every reply, and every write, fills 100 registers with one value; a reader must never see two.
TEST_F(ThreadsTest, NoReaderSeesHalfAReplyOrHalfAWrite)
{
    const int exchanges = 2000;
    // 100 registers 0x1111, and 0x2222.
    QByteArray replies[] = {bytesFrom("01 03 C8") + QByteArray(200, '\x11') + bytesFrom("33 C0"),
                            bytesFrom("01 03 C8") + QByteArray(200, '\x22') + bytesFrom("A0 E1")};
    link.maxRegs = 100;
    link.commMode = COMM_STORE_ONLY;
    rebuild("7:0:100");
    std::atomic<bool> stop{false};
    std::atomic<int> torn{0};

    std::thread reader([&] {
        while (!stop) {
            QByteArray value;
            driver.GetRegisterData(0, KIND_HOLDING_WORD, "0", 1, &value, 100);
            torn += value.count(value.at(0)) != 200;
        }
    });
    std::thread writer([&] {
        const QByteArray value(200, '\x33');
        const QList<VAR_ITEM> items = itemsFrom("7:0:100");
        while (!stop) {
            driver.SetRegisterData("", KIND_HOLDING_WORD, "0", 1, &value, 100, 0, 0);
            driver.ReCreatReadVarList(&items);
            driver.EnCommStation(2, 0);
        }
    });
    std::thread queuer([&] {
        for (int i = 0; !stop; ++i) {
            RW_VAR record;
            record.rwFlag = REQUEST_WRITE;
            record.areaNo = link.localArea;
            record.varKind = KIND_HOLDING_BIT;
            record.station = 1;
            record.addr = 2000 + i % 64;
            record.count = 1;
            record.value = "1";
            driver.AddListWriteVar(&record, QUEUE_CHECKED);
        }
    });
    for (int i = 0; i < exchanges; ++i) {
        const Protocol *request = nullptr;
        while (!request)
            request = driver.ComCommunication();
        const QByteArray reply = request->replyLen == 205
                                     ? replies[i % 2]
                                     : bytesFrom(request->replyLen == 8 ? GOOD_WRITE : GOOD_READ);
        EXPECT_EQ(driver.DataCom(&reply, reply.size())->retCode, RESULT_GOOD);
    }
    stop = true;
    reader.join();
    writer.join();
    queuer.join();
    EXPECT_EQ(torn, 0);
    EXPECT_LE(core.writeList.size(), 1024);
}
