// The library as a file: loading, unloading, two copies, and what a host can hand in wrongly.
#include "tests/driver_under_test.h"

#include <QFile>
#include <QLocale>
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

void exchangeOnce(const DriverLibrary &driver, ComInfo &link)
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

TEST(LibraryFile, IsLoadedUsedAndUnloadedAgainAndAgain)
{
    for (int i = 0; i < 300; ++i) {
        {
            const DriverLibrary driver(DRIVER_LIBRARY);
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
        const DriverLibrary first(DRIVER_LIBRARY, flags);
        const DriverLibrary second(copy.toStdString(), flags);
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
        EXPECT_NE(second.ComCommunication(), nullptr) << "its station is still enabled";

        QByteArray value;
        first.GetRegisterData(0, KIND_HOLDING_WORD, "0", 1, &value, 1);
        EXPECT_EQ(hexFrom(value), "34 12"); // the failed exchange has it shown at once
        second.GetRegisterData(0, KIND_HOLDING_WORD, "0", 2, &value, 1);
        EXPECT_EQ(hexFrom(value), "00 00");
    }
    EXPECT_FALSE(isLoaded(DRIVER_LIBRARY));
    EXPECT_FALSE(isLoaded(qPrintable(copy)));
}

// A host that sets a few fields counts on the others.
TEST(HostHeader, RecordsBeginWithZeros)
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

TEST_F(LibraryTest, SetUpCalls)
{
    EXPECT_EQ(driver.QueryFinishFlag(), 1);
    ComInfo other;
    other.reserved0 = other.reserved1 = 7;
    other.retryCount = 3;
    other.frameTotal = 4;
    other.hostWord = 5;
    driver.SetComInfo(&other);
    EXPECT_EQ(other.reserved0, 0);
    EXPECT_EQ(other.reserved1, 0);
    EXPECT_EQ(other.retryCount, 3);
    EXPECT_EQ(other.frameTotal, 4);
    EXPECT_EQ(other.hostWord, 5);

    int targets[3];
    driver.FlashLocalRegister(&targets[0], &targets[1], &targets[2]);
    EXPECT_EQ(*static_cast<void **>(driver.symbol("LB")), &targets[0]);
    EXPECT_EQ(*static_cast<void **>(driver.symbol("LW")), &targets[1]);
    EXPECT_EQ(*static_cast<void **>(driver.symbol("RWI")), &targets[2]);
}

TEST_F(LibraryTest, AddressesAreReadInTheApplicationsLocaleToo)
{
    const struct {
        const char *locale;
        const char *text;
        int kind;
        int offset;
    } rows[] = {
        {"C", "\u0661\u0662", KIND_HOLDING_WORD, 0},
        {"ar_EG", "\u0661\u0662", KIND_HOLDING_WORD, 24},
        {"ar_EG", "\u0663.\u0665", KIND_HOLDING_BIT, 29},
        {"ar_EG", "12", KIND_HOLDING_DWORD, 48},
        {"ar_EG", "abc", KIND_HOLDING_BYTE, 0},
        {"ar_EG", "\u0669\u0669\u0669\u0669\u0669\u0669\u0669\u0669\u0669\u0669", KIND_HOLDING_BYTE,
         0},
        {"sv_SE", "-4", KIND_HOLDING_WORD, -8},
        {"en_US", "1,500", KIND_HOLDING_BYTE, 0}, // no group separators
        {"de_DE", "1.500", KIND_HOLDING_BYTE, 0},
    };
    for (const auto &row : rows) {
        QLocale::setDefault(QLocale(row.locale));
        EXPECT_EQ(driver.PLCAddressChangeIntef(row.kind, QString::fromUtf8(row.text)), row.offset)
            << row.locale << " " << row.text;
    }
    QLocale::setDefault(QLocale::c());
}

TEST_F(LibraryTest, CallbacksThatAreNotRegisteredAreNotCalled)
{
    driver.RegistCallBackFuncIntf(nullptr, nullptr);
    write(KIND_HOLDING_WORD, "0", 1, "01 00");
    next();
    EXPECT_EQ(answer(""), 41);
    EXPECT_TRUE(core.writeList.isEmpty());
    EXPECT_EQ(takeEvents(), "none");
}

TEST_F(LibraryTest, WithoutComInfoNothingHappens)
{
    rebuild("7:0:1 7:50:1");
    next();
    driver.SetComInfo(nullptr);
    EXPECT_EQ(next(), "none");
    EXPECT_EQ(answer(GOOD_READ), 1);
    EXPECT_EQ(core.pendingList.size(), 1);
    EXPECT_EQ(rebuild("7:9:1"), 0);
    EXPECT_EQ(core.readList.size(), 2);
    RW_VAR record;
    record.varKind = KIND_HOLDING_WORD;
    record.station = 3;
    record.count = 5;
    EXPECT_EQ(driver.AddListOnceReadVar(&record, QUEUE_CHECKED), 0);
    EXPECT_EQ(record.varKind, KIND_HOLDING_WORD);
    EXPECT_EQ(record.station, 3);
    EXPECT_EQ(write(KIND_HOLDING_WORD, "0", 1, "01 00"), 0);
    // The others work as ever.
    EXPECT_EQ(driver.AddListOnceReadVar(&record, QUEUE_UNCONDITIONALLY), 1);
    EXPECT_EQ(driver.AddListWriteVar(&record, QUEUE_CHECKED), 1);
    EXPECT_EQ(read(KIND_HOLDING_WORD, "0", 1), "00 00");
    driver.SetComInfo(&link);
    EXPECT_EQ(answer(GOOD_READ), 1);
    EXPECT_EQ(read(KIND_HOLDING_WORD, "0", 1), "2A 00");
}

TEST_F(LibraryTest, AnotherComInfoBetweenTheFramesOfAWriteLosesNothing)
{
    write(KIND_HOLDING_BIT, "4.5", 1, "01");
    next();
    ComInfo second = link;
    second.frameTotal = 0;
    driver.SetComInfo(&second);
    EXPECT_EQ(answer(GOOD_READ), 1);
    EXPECT_EQ(takeEvents(), "none");
    EXPECT_EQ(next(), "01 10 00 02 00 01 02 00 2A 26 6D");
    EXPECT_EQ(answer(GOOD_WRITE), 1);
    EXPECT_EQ(takeEvents(), "done 9 0 0 1");
}

TEST_F(LibraryTest, NullPointersChangeNothing)
{
    rebuild("7:0:1 7:50:1");
    write(KIND_HOLDING_WORD, "0", 1, "01 00");
    EXPECT_EQ(driver.ReCreatReadVarList(nullptr), 2);
    EXPECT_EQ(driver.AddListReadVar(nullptr), 2);
    for (const QUEUE_MODE mode : {QUEUE_CHECKED, QUEUE_UNCONDITIONALLY}) {
        EXPECT_EQ(driver.AddListWriteVar(nullptr, mode), 1);
        EXPECT_EQ(driver.AddListOnceReadVar(nullptr, mode), 0);
    }
    EXPECT_EQ(driver.GetRegisterData(0, KIND_HOLDING_WORD, "0", 1, nullptr, 1), 0);
    EXPECT_EQ(driver.SetRegisterData("", KIND_HOLDING_WORD, "0", 1, nullptr, 1, 0, 0), 0);
    EXPECT_EQ(core.writeList.size(), 1);
    QList<RW_VAR> pieces;
    RW_VAR whole;
    whole.count = 9;
    driver.WhetherGroup(9, 3, nullptr, &pieces);
    driver.WhetherGroup(9, 3, &whole, nullptr);
    EXPECT_TRUE(pieces.isEmpty());
    EXPECT_EQ(whole.count, 9);
    next();
    EXPECT_EQ(driver.DataCom(nullptr, 0)->retCode, 41) << "an empty buffer";
    next();
    EXPECT_EQ(driver.DataCom(nullptr, 7)->retCode, 11);
}
