// The merging of variables into requests, and the rules of the queues.
#include "tests/driver_test.h"

namespace
{

struct MergeRow {
    int maxRegs;
    const char *items;
    const char *requests;
};

const MergeRow rebuilds[] = {
    {32, "7:10:2 1:24.3:1 10:20:2 6:0:4 8:3:1 4:301:3", "6[0,4) 7[10,42) 7[150,152) 8[3,4)"},
    {100, "7:0:10 7:95:5 7:150:10 7:260:60 7:280:200",
     "7[0,100) 7[150,160) 7[260,360) 7[360,460) 7[460,480)"},
    {100, "7:0:10 7:100:10", "7[0,100) 7[100,110)"},
    {100, "7:0:10 7:101:9", "7[0,10) 7[101,110)"},
    {100, "7:0:250 7:290:10", "7[0,100) 7[100,200) 7[200,300)"},
    {100, "7:0:200 7:290:10", "7[0,100) 7[100,200) 7[290,300)"},
    {100, "1:0.0:1 1:0.1:1", "7[0,1)"},
    {100, "7:5:1 6:5:1", "6[5,6) 7[5,6)"},
    {100, "7:50:1 7:3:1 7:20:1", "7[3,51)"}, // in any order
    {2, "7:0:4 7:4:1", "7[0,2) 7[2,4) 7[4,5)"},
    {10, "7:0:12 7:11:1", "7[0,10) 7[10,12)"},                  // [11,12) lies within the rest
    {10, "7:0:5 7:2:1 7:4:3", "7[0,7)"},                        // a range inside another
    {10, "7:0:12 7:12:12 7:24:1", "7[0,10) 7[10,20) 7[20,25)"}, // touching ranges grow together
    // nothing, or nothing that can be read
    {10, "7:0:0", ""},
    {10, "7:0:0 7:8:1", "7[8,9)"},
    {10, "7:5:-3 7:8:1", "7[5,9)"}, // a negative length takes part in the merge
    {10, "7:5:-3 7:80:1", "7[80,81)"},
    {10, "7:-1:1 1:7:1 12:0:1 255:0:1 7:3:1", "7[3,4)"},
    {100000, "7:0:65536 7:1:65537", "7[0,65536)"},
    // limits that are no sensible number
    {0, "7:0:3", "7[0,1) 7[1,2) 7[2,3)"},
    {-5, "7:0:1 7:2:1", "7[0,1) 7[2,3)"},
    {2147483647, "7:0:1 7:60000:1 7:1073741823:1", "7[0,1073741824)"},
};

struct GroupRow {
    int total;
    int maxRegs;
    const char *pieces;
};

// Of a record 7[40,47).
const GroupRow groups[] = {
    {7, 7, "7[40,47)"},          {5, 100, "7[40,47)"}, // not cut, so left as it is
    {0, 1, "7[40,47)"},          {-1, 0, "7[40,47)"},
    {8, 7, "7[40,47) 7[47,48)"}, {9, 3, "7[40,43) 7[43,46) 7[46,49)"},
    {2, 0, "7[40,41) 7[41,42)"}, {2147483647, 1, ""}, // more pieces than anyone can send
};

} // namespace

using ListsTest = DriverTest;

TEST_F(ListsTest, RebuildMergesAndCuts)
{
    for (const MergeRow &row : rebuilds) {
        info.maxRegs = row.maxRegs;
        const int length = rebuild(row.items);
        EXPECT_EQ(rangesOf(core.readList), row.requests) << row.items << ", " << row.maxRegs;
        EXPECT_EQ(length, core.readList.size());
    }
}

TEST_F(ListsTest, RebuildFillsTheRecordAndRestartsTheCycle)
{
    info.remoteMode = 6;
    info.defaultStation = 17;
    info.cycleDone = 1;
    core.cycleCount = 3;
    rebuild("7:10:2 7:10:1");
    const RW_VAR &record = core.readList.first();
    EXPECT_EQ(record.ownerId, 0);
    EXPECT_EQ(record.ownerTag, -1);
    EXPECT_EQ(record.rwFlag, REQUEST_READ);
    EXPECT_EQ(record.linkMode, 6);
    EXPECT_EQ(record.areaNo, 4);
    EXPECT_EQ(record.station, 17);
    EXPECT_EQ(record.rmwMark, 0);
    EXPECT_EQ(record.addrText, "10");
    EXPECT_EQ(record.varName, "7:10:2") << "the first of equal addresses gives the texts";
    EXPECT_EQ(info.cycleDone, 0);
    EXPECT_EQ(core.cycleCount, 0);

    info.cycleDone = 1;
    core.cycleCount = 3;
    EXPECT_EQ(rebuild(""), 0);
    EXPECT_TRUE(core.readList.isEmpty());
    EXPECT_EQ(info.cycleDone, 1);
    EXPECT_EQ(core.cycleCount, 3);

    info.defaultStation = 0;
    EXPECT_EQ(rebuild("7:10:2"), 0);
}

TEST_F(ListsTest, ReadyMadeReadsAreAppendedUnconverted)
{
    rebuild("7:0:1 7:50:1 6:0:1");
    const RW_VAR record = read(AREA_HOLDING_5000, 9, 200);
    EXPECT_EQ(driver.AddListReadVar(&record), 4);
    EXPECT_EQ(rangesOf(core.readList), "6[0,1) 7[0,1) 7[50,51) 8[9,209)");
}

TEST_F(ListsTest, WhetherGroupCutsIntoAList)
{
    for (const GroupRow &row : groups) {
        RW_VAR record = read(AREA_HOLDING, 40, 7);
        QList<RW_VAR> pieces;
        driver.WhetherGroup(row.total, row.maxRegs, &record, &pieces);
        EXPECT_EQ(rangesOf(pieces), row.pieces) << row.total << " by " << row.maxRegs;
        EXPECT_EQ(rangesOf({record}), pieces.isEmpty() ? "7[40,47)" : rangesOf({pieces.last()}));
    }
}

TEST_F(ListsTest, AQueuedWriteIsReplacedExceptAtTheHead)
{
    const auto add = [this](int addr, const char *value, int mode = QUEUE_CHECKED) {
        const RW_VAR record = write(KIND_HOLDING_WORD, addr, 1, value);
        return driver.AddListWriteVar(&record, mode);
    };
    EXPECT_EQ(add(0, "01 00"), 1);
    EXPECT_EQ(add(0, "02 00"), 2) << "the head may be on the line";
    EXPECT_EQ(add(2, "03 00"), 3);
    EXPECT_EQ(add(0, "04 00"), 3);
    EXPECT_EQ(hexFrom(core.writeList.at(0).value), "01 00");
    EXPECT_EQ(hexFrom(core.writeList.at(1).value), "04 00");
    EXPECT_EQ(hexFrom(core.writeList.at(2).value), "03 00");
    EXPECT_EQ(add(2, "05 00", QUEUE_UNCONDITIONALLY), 4);

    // Each differs from the second entry in one part of the target.
    RW_VAR other = write(KIND_HOLDING_WORD, 0, 1, "06 00");
    other.station = 2;
    EXPECT_EQ(driver.AddListWriteVar(&other, QUEUE_CHECKED), 5);
    other = write(KIND_HOLDING_5000_WORD, 0, 1, "07 00");
    EXPECT_EQ(driver.AddListWriteVar(&other, QUEUE_CHECKED), 6);
    other = write(KIND_HOLDING_WORD, 0, 2, "08 00");
    EXPECT_EQ(driver.AddListWriteVar(&other, QUEUE_CHECKED), 7);
    EXPECT_EQ(hexFrom(core.writeList.at(1).value), "04 00");
    other = write(KIND_HOLDING_WORD, 0, 1, "09 00", 3, 4);
    EXPECT_EQ(driver.AddListWriteVar(&other, QUEUE_CHECKED), 7);
    EXPECT_EQ(core.writeList.at(1).ownerTag, 4) << "every field is replaced";
}

TEST_F(ListsTest, TheWriteQueueHolds1024)
{
    RW_VAR record = write(KIND_HOLDING_WORD, 0, 1, "00 00");
    for (int i = 0; i < 1023; ++i) {
        record.addr = 2 * i;
        driver.AddListWriteVar(&record, QUEUE_CHECKED);
    }
    record.addr = 5000;
    EXPECT_EQ(driver.AddListWriteVar(&record, QUEUE_CHECKED), 1024);
    record.addr = 6000;
    EXPECT_EQ(driver.AddListWriteVar(&record, QUEUE_CHECKED), 1024);
    EXPECT_EQ(core.writeList.last().addr, 5000) << "dropped";
    record.addr = 10;
    record.value = bytesFrom("77 00");
    EXPECT_EQ(driver.AddListWriteVar(&record, QUEUE_CHECKED), 1024);
    EXPECT_EQ(hexFrom(core.writeList.at(5).value), "77 00");
    EXPECT_EQ(driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY), 1025);
}

TEST_F(ListsTest, AOneShotReadIsConvertedCutAndQueuedOnce)
{
    info.maxRegs = 100;
    info.defaultStation = 3;
    RW_VAR record = once(KIND_HOLDING_WORD, "100", 250);
    record.rmwMark = -1;
    record.remoteArg = 5;
    RW_VAR same = record;
    EXPECT_EQ(driver.AddListOnceReadVar(&record, QUEUE_CHECKED), 3);
    EXPECT_EQ(rangesOf(core.onceReadList), "7[100,200) 7[200,300) 7[300,350)");
    EXPECT_EQ(rangesOf({record}), "7[300,350)");
    EXPECT_EQ(record.station, 3);
    EXPECT_EQ(record.rmwMark, 0);
    EXPECT_EQ(record.remoteArg, 0);
    EXPECT_EQ(driver.AddListOnceReadVar(&same, QUEUE_CHECKED), 3);

    const auto addAgain = [this](int ownerId, int ownerTag, int station) {
        RW_VAR other = once(KIND_HOLDING_WORD, "100", 100);
        other.ownerId = ownerId;
        other.ownerTag = ownerTag;
        other.station = station;
        return driver.AddListOnceReadVar(&other, QUEUE_CHECKED);
    };
    EXPECT_EQ(addAgain(1, 0, 9), 4);
    EXPECT_EQ(addAgain(0, 1, 9), 5);
    EXPECT_EQ(addAgain(0, 1, 8), 5) << "the default station is forced";
    info.perVarStation = 1;
    EXPECT_EQ(addAgain(0, 1, 8), 6);
    EXPECT_EQ(addAgain(0, 1, 0), 0) << "a broadcast cannot be read";

    RW_VAR unconverted = once(KIND_HOLDING_WORD, "7", 1);
    EXPECT_EQ(driver.AddListOnceReadVar(&unconverted, QUEUE_UNCONDITIONALLY), 7);
    EXPECT_EQ(core.onceReadList.last().addr, 0);
    RW_VAR nothing = once(KIND_HOLDING_WORD, "7", 0);
    EXPECT_EQ(driver.AddListOnceReadVar(&nothing, QUEUE_CHECKED), 7);
    EXPECT_EQ(rangesOf({nothing}), "7[7,7)");
}

TEST_F(ListsTest, TheOneShotQueueHolds1024)
{
    info.maxRegs = 0; // counts as 1
    RW_VAR record = once(KIND_HOLDING_WORD, "0", 1023);
    EXPECT_EQ(driver.AddListOnceReadVar(&record, QUEUE_CHECKED), 1023);
    record = once(KIND_HOLDING_WORD, "2000", 2);
    EXPECT_EQ(driver.AddListOnceReadVar(&record, QUEUE_CHECKED), 1024);
    EXPECT_EQ(core.onceReadList.last().addr, 2000);
    EXPECT_EQ(driver.AddListOnceReadVar(&record, QUEUE_UNCONDITIONALLY), 1025);
}
