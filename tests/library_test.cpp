// The library as a file: loading, unloading, two copies, records and data.
#include "tests/driver_under_test.h"

#include <QFile>
#include <QTemporaryDir>

#include <dlfcn.h>

using LibraryTest = DriverTest;

namespace
{

bool isLoaded(const char *path)
{
    void *const handle = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (handle)
        dlclose(handle);
    return handle != nullptr;
}

void exchangeOnce(const velko::DriverLibrary &driver, ComInfo &link)
{
    link.maxRegs = 10;
    link.defaultStation = 1;
    link.commMode = COMM_DEVICE;
    driver.SetComInfo(&link);
    const QList<VAR_ITEM> items = itemsFrom("7:0:5 1:3.5:1");
    driver.ReCreatReadVarList(&items);
    driver.ComCommunication();
    const QByteArray nothing;
    driver.DataCom(&nothing, 0);
}

} // namespace

TEST(LibraryFile, CanBeLoadedUsedAndUnloadedRepeatedly)
{
    for (int i = 0; i < 300; ++i) {
        {
            const velko::DriverLibrary driver(DRIVER_LIBRARY);
            const auto &core = *static_cast<Modbus_RTU_Master *>(driver.symbol("PLC_driver"));
            ASSERT_TRUE(core.readList.isEmpty());
            ASSERT_EQ(core.activeSource, 100);
            ASSERT_EQ(core.comInfo, nullptr);
            ComInfo link;
            exchangeOnce(driver, link);
            QByteArray value;
            driver.GetRegisterData(0, KIND_HOLDING_WORD, "0", 1, &value, 1);
        }
        ASSERT_FALSE(isLoaded(DRIVER_LIBRARY));
    }
}

TEST(LibraryFile, TwoCopiesShareNothing)
{
    const QTemporaryDir folder;
    const QString copy = folder.filePath("second_line.so");
    ASSERT_TRUE(QFile::copy(DRIVER_LIBRARY, copy));
    for (const int flags : {RTLD_LOCAL, RTLD_GLOBAL}) {
        const velko::DriverLibrary first(DRIVER_LIBRARY, flags);
        const velko::DriverLibrary second(copy.toStdString(), flags);
        for (const char *name : {"PLC_driver", "DataStorage", "LB", "LW", "RWI"})
            EXPECT_NE(first.symbol(name), second.symbol(name)) << name;

        ComInfo link;
        exchangeOnce(second, link);
        EXPECT_EQ(first.ComCommunication(), nullptr);
        ComInfo other;
        exchangeOnce(first, other);
        const auto &core = *static_cast<Modbus_RTU_Master *>(second.symbol("PLC_driver"));
        EXPECT_EQ(core.comInfo, &link);

        link.commMode = COMM_STORE_ONLY;
        const QByteArray written = bytesFrom("34 12");
        second.SetRegisterData("", KIND_HOLDING_WORD, "0", 1, &written, 1, 0, 0);
        other.commMode = COMM_DEVICE;
        first.SetRegisterData("", KIND_HOLDING_WORD, "0", 1, &written, 1, 0, 0);
        EXPECT_TRUE(core.writeList.isEmpty());
        first.EnCommStation(1, 0);
        EXPECT_NE(second.ComCommunication(), nullptr)
            << "station 1 of the second copy must still be enabled";

        QByteArray value;
        first.GetRegisterData(0, KIND_HOLDING_WORD, "0", 1, &value, 1);
        EXPECT_EQ(hexFrom(value), "34 12"); // after the failed exchange, the store shows it at once
        second.GetRegisterData(0, KIND_HOLDING_WORD, "0", 2, &value, 1);
        EXPECT_EQ(hexFrom(value), "00 00");
    }
    EXPECT_FALSE(isLoaded(DRIVER_LIBRARY));
    EXPECT_FALSE(isLoaded(qPrintable(copy)));
}

// A host that sets only some fields relies on the others being 0.
TEST(HostHeader, RecordsAreInitializedToZero)
{
    const ComInfo info;
    const int *const words = reinterpret_cast<const int *>(&info);
    for (size_t i = 0; i < sizeof(info) / sizeof(int); ++i)
        EXPECT_EQ(words[i], 0) << i;
    const RW_VAR var;
    for (const int field :
         {var.ownerId, var.ownerTag, var.rwFlag, var.linkMode, var.areaNo, var.retCode, var.varKind,
          var.addr, var.station, var.count, var.rmwMark, var.remoteArg})
        EXPECT_EQ(field, 0);
    const Protocol frame;
    for (const int field : {frame.frameLen, frame.replyLen, frame.dataOffset, frame.dataLen,
                            frame.reserved[0], frame.reserved[1], frame.reserved[2]})
        EXPECT_EQ(field, 0);
    const VAR_ITEM item;
    EXPECT_EQ(item.hostByte | item.kind | item.length, 0);
    for (const unsigned char byte : item.hostBytes)
        EXPECT_EQ(byte, 0);
}

TEST_F(LibraryTest, SetupCalls)
{
    driver.SetComInfo(nullptr);
    EXPECT_EQ(driver.QueryFinishFlag(), 1);
    int targets[3];
    driver.FlashLocalRegister(&targets[0], &targets[1], &targets[2]);
    EXPECT_EQ(*static_cast<void **>(driver.symbol("LB")), &targets[0]);
    EXPECT_EQ(*static_cast<void **>(driver.symbol("LW")), &targets[1]);
    EXPECT_EQ(*static_cast<void **>(driver.symbol("RWI")), &targets[2]);
}
