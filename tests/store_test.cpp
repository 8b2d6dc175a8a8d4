// Values: what the host reads from the store, and what its writes become.
#include "tests/driver_test.h"

namespace
{

// Registers 0 to 3 of area 7 hold 0x0028, 0x8001, 0x5678 and 0x1234.
const char *const IMAGE = "28 00 01 80 78 56 34 12";

struct ReadRow {
    int kind;
    const char *text;
    int length;
    const char *output;
};

const ReadRow reads[] = {
    {KIND_HOLDING_WORD, "3", 1, "34 12"},
    {KIND_HOLDING_WORD, "1", 4, "01 80 78 56 34 12 00 00"}, // past the end: 0
    {KIND_HOLDING_DWORD, "1", 2, "78 56 34 12"},
    {KIND_HOLDING_DWORD, "1", 1, "78 56 34 12"},
    {KIND_HOLDING_DWORD, "1", 3, "78 56 34 12 00 00 00 00"},
    {KIND_HOLDING_BYTE, "6", 2, "34 12 00 00"},
    {KIND_HOLDING_BYTE, "3", 1, "80 00"},
    {KIND_HOLDING_BIT, "0.3", 3, "01 00 01"},
    {KIND_HOLDING_BIT, "0.15", 2, "00 01"}, // bit 15 of register 0 and bit 0 of register 1
    {KIND_HOLDING_BIT, "3.7", 1, "01"},
    {KIND_HOLDING_BIT, "6.2", 1, "01"},
    {KIND_INPUT_WORD, "3", 1, "00 00"},
    {KIND_HOLDING_5000_WORD, "3", 1, "00 00"},
    {KIND_HOLDING_WORD, "abc", 1, "28 00"},
    {KIND_HOLDING_WORD, "1073741823", 1, "00 00"},
    {KIND_HOLDING_BYTE, "2147483647", 3, "00 00 00 00 00 00"},
    // nothing
    {KIND_HOLDING_WORD, "3", 0, ""},
    {KIND_HOLDING_BYTE, "3", -1, ""},
    {KIND_HOLDING_BIT, "3.0", -2147483647 - 1, ""},
    {KIND_HOLDING_DWORD, "3", -1, ""},
    // refused
    {KIND_HOLDING_BIT, "7", 1, "refused untouched"},
    {KIND_HOLDING_WORD, "-1", 1, "refused untouched"},
    {KIND_COUNT, "0", 1, "refused untouched"},
    {-1, "0", 1, "refused untouched"},
    {KIND_HOLDING_WORD, "0", 65537, "refused untouched"},
    {KIND_HOLDING_BIT, "0.0", 2147483647, "refused untouched"},
};

struct WriteRow {
    int kind;
    const char *text;
    int length;
    const char *value;
    const char *image; // bytes 0 to 7 of the area, which held FF in all of them
};

const WriteRow storeWrites[] = {
    {KIND_HOLDING_BIT, "1.5", 1, "00", "FF DF FF FF FF FF FF FF"},
    {KIND_HOLDING_BIT, "0.7", 3, "00 02 00", "7F FD FF FF FF FF FF FF"},
    {KIND_HOLDING_BIT, "0.6", 4, "00", "3F FC FF FF FF FF FF FF"}, // missing bytes are 0
    {KIND_HOLDING_BYTE, "5", 1, "AB", "FF FF FF FF FF AB FF FF"},
    {KIND_HOLDING_BYTE, "1", 3, "01 02", "FF 01 02 00 FF FF FF FF"},
    {KIND_INPUT_WORD, "3", 1, "34 12", "FF FF FF FF FF FF 34 12"},
    {KIND_HOLDING_WORD, "0", 2, "01 02 03", "01 02 03 00 FF FF FF FF"},
    {KIND_HOLDING_5000_DWORD, "1", 1, "01 02 03 04", "FF FF FF FF 01 02 03 04"},
    {KIND_INPUT_DWORD, "0", 2, "01 02 03 04 05", "01 02 03 04 FF FF FF FF"},
    {KIND_HOLDING_WORD, "0", 0, "01 02", "FF FF FF FF FF FF FF FF"},
    {KIND_HOLDING_DWORD, "0", -1, "01 02", "FF FF FF FF FF FF FF FF"},
};

struct QueueRow {
    int kind;
    const char *text;
    int length;
    const char *value;
    int maxRegs;
    const char *records; // "offset+count=value" of each
};

const QueueRow deviceWrites[] = {
    {KIND_HOLDING_BIT, "0.3", 3, "01 00 01", 32, "3+1=01 4+1=00 5+1=01 "},
    {KIND_HOLDING_BYTE, "5", 2, "AB CD", 32, "5+1=AB 6+1=CD "},
    {KIND_HOLDING_5000_BYTE, "5", 2, "AB", 32, "5+1=AB 6+1=00 "},
    {KIND_HOLDING_WORD, "10", 5, "01 02 03 04 05 06 07 08 09 0A", 2,
     "20+2=01 02 03 04 24+2=05 06 07 08 28+1=09 0A "},
    {KIND_HOLDING_WORD, "10", 4, "01 02 03 04 05 06", 2, "20+2=01 02 03 04 24+2=05 06 00 00 "},
    {KIND_HOLDING_WORD, "10", 2, "01 02 03 04", -7, "20+1=01 02 22+1=03 04 "},
    {KIND_HOLDING_DWORD, "1", 3, "01 02 03 04 05 06", 120, "4+4=01 02 03 04 05 06 00 00 "},
    {KIND_HOLDING_5000_DWORD, "1", 4, "01 02 03 04 05 06 07 08", 3,
     "4+3=01 02 03 04 05 06 10+1=07 08 "},
    {KIND_HOLDING_WORD, "1073741823", 1, "01 02", 32, "2147483646+1=01 02 "},
    // refused, or nothing to do
    {KIND_HOLDING_WORD, "1073741823", 2, "01 02", 32, ""}, // the second would leave 32 bits
    {KIND_HOLDING_WORD, "10", 0, "01 02", 32, ""},
    {KIND_HOLDING_WORD, "10", -4, "01 02", 32, ""},
    {KIND_HOLDING_WORD, "-1", 1, "01 02", 32, ""},
    {KIND_HOLDING_WORD, "10", 65537, "01 02", 32, ""},
    {KIND_HOLDING_BIT, "10", 1, "01", 32, ""},
    {KIND_COUNT, "10", 1, "01", 32, ""},
    {KIND_INPUT_BIT, "0.3", 1, "01", 32, ""},
    {KIND_INPUT_BYTE, "3", 1, "01", 32, ""},
    {KIND_INPUT_WORD, "3", 1, "01 00", 32, ""},
    {KIND_INPUT_DWORD, "3", 2, "01 00", 32, ""},
};

std::string recordsOf(const QList<RW_VAR> &list)
{
    std::string text;
    for (const RW_VAR &record : list)
        text += std::to_string(record.addr) + "+" + std::to_string(record.count) + "="
                + hexFrom(record.value) + " ";
    return text;
}

} // namespace

using StoreTest = DriverTest;

TEST_F(StoreTest, ReadsByWidth)
{
    info.commMode = COMM_STORE_ONLY;
    EXPECT_EQ(set(KIND_HOLDING_BYTE, "0", IMAGE, 8), 1);
    for (const ReadRow &row : reads)
        EXPECT_EQ(stored(row.kind, row.text, row.length), row.output)
            << "kind " << row.kind << " " << row.text << " length " << row.length;
    EXPECT_EQ(stored(KIND_HOLDING_WORD, "3", 1, 2), "00 00") << "another station";
    EXPECT_EQ(stored(KIND_HOLDING_WORD, "0", 65536).size(), 131072U * 3 - 1);
    driver.EnCommStation(1, 0);
    EXPECT_EQ(stored(KIND_HOLDING_WORD, "3", 1), "34 12") << "a disabled station keeps its values";
}

TEST_F(StoreTest, WritesIntoTheStoreAlone)
{
    info.commMode = 1;
    for (const WriteRow &row : storeWrites) {
        const int bytes = KIND_INPUT_BYTE + row.kind % 3;
        set(bytes, "0", "FF FF FF FF FF FF FF FF", 8);
        EXPECT_EQ(set(row.kind, row.text, row.value, row.length), 1);
        EXPECT_EQ(stored(bytes, "0", 8), std::string(row.image) + " 00 00 00 00 00 00 00 00")
            << "kind " << row.kind << " " << row.text << " " << row.value;
    }
    EXPECT_TRUE(core.writeList.isEmpty());
    EXPECT_EQ(set(KIND_HOLDING_WORD, "-1", "01 02", 1), 0);
    EXPECT_EQ(set(KIND_HOLDING_WORD, "0", "01 02", 65537), 0);
}

TEST_F(StoreTest, ImagesEndAt16MiB)
{
    info.commMode = COMM_STORE_ONLY;
    EXPECT_EQ(set(KIND_HOLDING_BYTE, "16777215", "AB CD", 2), 1);
    EXPECT_EQ(stored(KIND_HOLDING_BYTE, "16777215", 2), "AB 00 00 00");
    EXPECT_EQ(set(KIND_HOLDING_BIT, "16777216.0", "01", 1), 1);
    EXPECT_EQ(stored(KIND_HOLDING_BIT, "16777216.0", 1), "00");
    const auto &images = *static_cast<StationImages *>(driver.symbol("DataStorage"));
    EXPECT_EQ(images[1][AREA_HOLDING].size(), 16777216);
}

TEST_F(StoreTest, WritesToTheDeviceAreCutAndQueued)
{
    for (const QueueRow &row : deviceWrites) {
        info.maxRegs = row.maxRegs;
        core.writeList.clear();
        const int result = set(row.kind, row.text, row.value, row.length, 6, 7);
        EXPECT_EQ(recordsOf(core.writeList), row.records) << row.kind << " " << row.text;
        EXPECT_EQ(result, core.writeList.size());
    }
    EXPECT_EQ(stored(KIND_HOLDING_BYTE, "5", 2), "00 00 00 00") << "not before it is sent";
    info.remoteMode = 1;
    EXPECT_EQ(set(KIND_INPUT_WORD, "3", "01 00", 1), 1) << "remote mode has a frame for every kind";
}

TEST_F(StoreTest, AQueuedWriteCarriesTheHostsFields)
{
    info.remoteMode = 3;
    info.defaultStation = 5;
    const QByteArray value = bytesFrom("01 02");
    for (const int perVarStation : {0, 1}) {
        info.perVarStation = perVarStation;
        driver.SetRegisterData("a name", KIND_HOLDING_WORD, "10", 8, &value, 1, 6, 7);
    }
    const RW_VAR &record = core.writeList.first();
    EXPECT_EQ(record.ownerId, 6);
    EXPECT_EQ(record.ownerTag, 7);
    EXPECT_EQ(record.rwFlag, REQUEST_WRITE);
    EXPECT_EQ(record.linkMode, 3);
    EXPECT_EQ(record.areaNo, 4);
    EXPECT_EQ(record.varName, "a name");
    EXPECT_EQ(record.addrText, "10");
    EXPECT_EQ(record.varKind, KIND_HOLDING_WORD);
    EXPECT_EQ(record.station, 5);
    EXPECT_EQ(record.rmwMark, 0);
    EXPECT_EQ(core.writeList.last().station, 8);
}

TEST_F(StoreTest, WhenTheStoreShowsAWrite)
{
    set(KIND_HOLDING_WORD, "0", "11 11", 1);
    EXPECT_EQ(stored(KIND_HOLDING_WORD, "0", 1), "00 00") << "queued";
    serve();
    EXPECT_EQ(stored(KIND_HOLDING_WORD, "0", 1), "11 11") << "when its request is built";

    info.retryLimit = 5;
    set(KIND_HOLDING_WORD, "1", "22 22", 1);
    next();
    silence();
    set(KIND_HOLDING_WORD, "2", "33 33", 1);
    EXPECT_EQ(stored(KIND_HOLDING_WORD, "2", 1), "33 33") << "at once while the line fails";

    core.writeList.clear();
    core.pendingList.clear();
    const RW_VAR record = write(KIND_HOLDING_WORD, 6, 1, "44 44");
    driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
    next();
    EXPECT_EQ(stored(KIND_HOLDING_WORD, "3", 1), "00 00") << "not by the builder meanwhile";
    core.pendingList.clear();
    info.remoteMode = 1;
    next();
    EXPECT_EQ(stored(KIND_HOLDING_WORD, "3", 1), "44 44") << "always in remote mode";
}

TEST_F(StoreTest, AFullQueueShowsValuesThatWereNotQueued)
{
    RW_VAR record = write(KIND_HOLDING_WORD, 0, 1, "00 00");
    for (int i = 0; i < 1024; ++i)
        driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
    EXPECT_EQ(set(KIND_HOLDING_BYTE, "500", "AB CD", 2), 1024);
    EXPECT_EQ(core.writeList.size(), 1024);
    EXPECT_EQ(stored(KIND_HOLDING_BYTE, "500", 1), "00 00");
    core.commFailed = 1;
    EXPECT_EQ(set(KIND_HOLDING_BYTE, "500", "AB CD", 2), 1024);
    EXPECT_EQ(stored(KIND_HOLDING_BYTE, "500", 2), "AB CD 00 00");
}

// Records that no SetRegisterData would make: what lies outside the image is left out.
TEST_F(StoreTest, HandMadeRecords)
{
    struct Row {
        int kind;
        int addr;
        int count;
        const char *image;
    };
    const Row rows[] = {
        {KIND_HOLDING_WORD, -2, 2, "33 44 FF FF"}, // the second word lands at 0
        {KIND_HOLDING_WORD, 0, 2, "11 22 33 44"},
        {KIND_HOLDING_BIT, -1, 3, "13 22 33 44"}, // sets bits 0 and 1
        {KIND_HOLDING_WORD, 2147483647, 2147483647, "13 22 33 44"},
        {KIND_HOLDING_BYTE, 1, -5, "13 22 33 44"},
        {KIND_HOLDING_DWORD, -2147483647 - 1, 2147483647, "00 00 00 00"}, // missing bytes are 0
    };
    info.remoteMode = 1;
    info.commMode = COMM_STORE_ONLY;
    set(KIND_HOLDING_BYTE, "0", "FF FF FF FF", 4);
    for (const Row &row : rows) {
        const RW_VAR record = write(row.kind, row.addr, row.count, "11 22 33 44");
        core.writeBurst = 0;
        driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
        next();
        EXPECT_EQ(answer(GOOD_WRITE), 1);
        EXPECT_EQ(stored(KIND_HOLDING_WORD, "0", 2), row.image) << row.kind << " " << row.addr;
    }
}
