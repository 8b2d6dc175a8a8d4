// Replies: their judgement, and what becomes of the request.
#include "tests/driver_test.h"

namespace
{

struct ReplyRow {
    const char *what;
    const char *reply;
    int length; // -2: as many as there are
    int local;  // verdicts on a request of the own area, and of another
    int remote;
};

const int ALL = -2;

// Answers to a read of one register; each refused one differs from the first in one point.
const ReplyRow readReplies[] = {
    {"good", "01 03 02 00 2A 39 9B", ALL, 1, 100},
    {"another station and function", "02 04 02 00 2A 7C EF", ALL, 1, 100},
    {"more bytes in the buffer", "01 03 02 00 2A 39 9B 55 55", 7, 1, 100},
    {"one data bit", "01 03 02 00 2B 39 9B", ALL, 11, 111},
    {"first byte of the CRC", "01 03 02 00 2A 38 9B", ALL, 11, 111},
    {"second byte of the CRC", "01 03 02 00 2A 39 9A", ALL, 11, 111},
    {"CRC bytes exchanged", "01 03 02 00 2A 9B 39", ALL, 11, 111},
    {"fewer bytes in the buffer", "01 03 02 00 2A 39", 7, 11, 111},
    {"one byte short", "01 03 02 00 2A 39", ALL, 71, 171},
    {"one byte long", "01 03 02 00 2A 39 9B 00", ALL, 71, 171},
    {"an exception", "01 83 02 C0 F1", ALL, 71, 171},
    {"one byte", "01", ALL, 71, 171},
    {"a negative length", "01 03 02 00 2A 39 9B", -1, 71, 171},
    {"nothing", "", ALL, 41, 141},
    {"nothing, but a full buffer", "01 03 02 00 2A 39 9B", 0, 41, 141},
};

struct OwnerRow {
    int ownerId;
    int bad;
    int none;
    int length;
    int remoteNone;
};

const OwnerRow owners[] = {
    {0, 11, 41, 71, 141},  {3, 14, 44, 74, 144},  {11, 22, 52, 82, 152},
    {12, 11, 41, 71, 141}, {-1, 11, 41, 71, 141}, {2147483647, 11, 41, 71, 141},
};

} // namespace

using Strings = std::vector<std::string>;

class ExchangeTest : public DriverTest
{
protected:
    void queueRead(const RW_VAR &record)
    {
        driver.AddListReadVar(&record);
        next();
    }

    void queueWrite(const RW_VAR &record)
    {
        driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
    }

    RW_VAR wordWrite(int addr, int ownerId, int ownerTag, int station = 1)
    {
        RW_VAR record = write(KIND_HOLDING_WORD, addr, 1, "34 12", ownerId, ownerTag);
        record.station = station;
        return record;
    }
};

TEST_F(ExchangeTest, VerdictsOnReplies)
{
    for (const ReplyRow &row : readReplies) {
        for (const bool local : {true, false}) {
            core.readList.clear();
            RW_VAR record = read(AREA_HOLDING, 50, 1);
            record.areaNo = local ? 4 : 5;
            queueRead(record);
            const int length = row.length == ALL ? bytesFrom(row.reply).size() : row.length;
            const int verdict = answer(row.reply, length);
            EXPECT_EQ(verdict, local ? row.local : row.remote) << row.what;
            const bool saved = verdict == 1;
            EXPECT_EQ(stored(KIND_HOLDING_WORD, "50", 1), saved ? "2A 00" : "00 00") << row.what;
            info.commMode = COMM_STORE_ONLY;
            set(KIND_HOLDING_WORD, "50", "00 00", 1);
        }
    }
}

TEST_F(ExchangeTest, ErrorCodesCarryTheOwner)
{
    for (const OwnerRow &row : owners) {
        RW_VAR record = read(AREA_HOLDING, 0, 1);
        record.ownerId = row.ownerId;
        core.readList.clear();
        queueRead(record);
        EXPECT_EQ(answer("01 03 02 00 2B 39 9B"), row.bad);
        next();
        EXPECT_EQ(silence(), row.none);
        next();
        EXPECT_EQ(answer("01"), row.length);
        record.areaNo = 5;
        core.readList.clear();
        queueRead(record);
        EXPECT_EQ(silence(), row.remoteNone);
        next();
        EXPECT_EQ(answer(GOOD_READ), 100);
    }
}

TEST_F(ExchangeTest, ADirectionThatIsNeitherReadNorWriteIsABadReply)
{
    RW_VAR record = read(AREA_HOLDING, 0, 1);
    record.rwFlag = 2;
    queueRead(record);
    EXPECT_EQ(answer(GOOD_READ), 11);
}

TEST_F(ExchangeTest, AReplyWhileNothingIsPending)
{
    EXPECT_EQ(answer(GOOD_READ), 1);
    rebuild("7:0:1");
    EXPECT_EQ(answer(GOOD_READ), 1);
    EXPECT_EQ(core.readList.size(), 1);
    EXPECT_EQ(info.retryCount, 0);
    EXPECT_EQ(core.commFailed, 0);
    EXPECT_TRUE(events.empty());
}

TEST_F(ExchangeTest, AReadIsSavedRotatedAndReturned)
{
    rebuild("7:10:2 7:80:1");
    core.readList[0].value = "left over";
    next();
    EXPECT_EQ(answer("01 03 04 12 34 56 78 81 07"), 1);
    EXPECT_EQ(stored(KIND_HOLDING_BYTE, "20", 4), "34 12 78 56 00 00 00 00");
    EXPECT_EQ(stored(KIND_HOLDING_BYTE, "0", 4), "00 00 00 00 00 00 00 00");
    EXPECT_EQ(core.retVar.addr, 10);
    EXPECT_EQ(core.retVar.ownerTag, -1);
    EXPECT_EQ(core.retVar.varName, "7:10:2");
    EXPECT_EQ(rangesOf(core.readList), "7[80,81) 7[10,12)");
    EXPECT_TRUE(events.empty()) << "cyclic reads are not reported";
}

TEST_F(ExchangeTest, RetriesOfOneRequest)
{
    info.retryLimit = 2;
    rebuild("7:10:1 7:80:1");
    for (int i = 1; i <= 2; ++i) {
        EXPECT_EQ(next(4), "01 03 00 0A");
        EXPECT_EQ(silence(), 0);
        EXPECT_EQ(info.retryCount, i);
        EXPECT_EQ(core.retVar.addr, 0) << "unchanged while the request goes on";
        EXPECT_EQ(core.commFailed, 1);
        EXPECT_TRUE(events.empty());
    }
    EXPECT_EQ(next(4), "01 03 00 0A");
    EXPECT_EQ(silence(), 41);
    EXPECT_EQ(events, Strings{"fail 0 1"});
    EXPECT_EQ(info.retryCount, 0);
    EXPECT_EQ(core.retVar.addr, 10);
    EXPECT_EQ(rangesOf(core.readList), "7[80,81) 7[10,11)") << "given up, but still polled";
    EXPECT_EQ(serve(), "01 03 00 50");
    EXPECT_EQ(core.commFailed, 0);
}

TEST_F(ExchangeTest, FailuresOfDifferentRequestsAddUp)
{
    info.retryLimit = 2;
    rebuild("7:10:1 7:80:1");
    next();
    EXPECT_EQ(silence(), 0);
    EXPECT_EQ(serve(), "01 03 00 0A");
    EXPECT_EQ(info.retryCount, 1) << "a good reply does not reset it";
    next();
    EXPECT_EQ(silence(), 0);
    EXPECT_EQ(silence(), 41);
}

TEST_F(ExchangeTest, RetryLimitsAtTheirEdges)
{
    rebuild("7:10:1");
    info.retryLimit = -1;
    next();
    EXPECT_EQ(silence(), 41);
    info.retryLimit = 2147483647;
    info.retryCount = 2147483646;
    for (int i = 0; i < 3; ++i) {
        next();
        EXPECT_EQ(silence(), 0);
        EXPECT_EQ(info.retryCount, 2147483647);
    }
}

TEST_F(ExchangeTest, AReadModifyWriteThatFailsHalfway)
{
    info.retryLimit = 1;
    queueWrite(write(KIND_HOLDING_BIT, 37, 1, "01", 2, 8));
    next();
    EXPECT_EQ(answer("01 03 02 12 34 B5 33"), 1);
    EXPECT_EQ(core.writeList.size(), 1);
    EXPECT_EQ(info.frameDone, 1);
    EXPECT_EQ(next(2), "01 10");
    EXPECT_EQ(silence(), 0);
    EXPECT_EQ(next(9), "01 10 00 02 00 01 02 12 34") << "the merged frame goes out again";
    EXPECT_EQ(silence(), 43);
    EXPECT_EQ(events, (Strings{"done 9 2 8 2", "fail 2 1"}));
    EXPECT_TRUE(core.writeList.isEmpty());
    EXPECT_TRUE(core.pendingList.isEmpty());
    EXPECT_FALSE(core.pendingMerge.active);
}

TEST_F(ExchangeTest, AReadModifyWriteLeavesTheStoreToTheWrite)
{
    info.retryLimit = 1;
    core.commFailed = 1; // so that building the request does not touch the store
    queueWrite(write(KIND_HOLDING_BYTE, 4, 1, "AB"));
    next();
    EXPECT_EQ(answer("01 03 02 12 34 B5 33"), 1);
    EXPECT_EQ(stored(KIND_HOLDING_BYTE, "4", 1), "00 00");
}

TEST_F(ExchangeTest, AnotherComInfoBetweenTheFramesLosesNothing)
{
    queueWrite(write(KIND_HOLDING_BIT, 37, 1, "01", 2, 8));
    next();
    ComInfo second = info;
    second.frameTotal = 0;
    driver.SetComInfo(&second);
    EXPECT_EQ(answer("01 03 02 12 34 B5 33"), 1);
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(next(2), "01 10");
    EXPECT_EQ(answer(GOOD_WRITE), 1);
    EXPECT_EQ(events, Strings{"done 9 2 8 1"});
}

TEST_F(ExchangeTest, DoneIsReportedByTheLastOfAnIdentity)
{
    queueWrite(wordWrite(0, 3, 1));
    queueWrite(wordWrite(2, 3, 2));
    queueWrite(wordWrite(4, 3, 1));
    queueWrite(wordWrite(6, 2, 1));
    serve();
    EXPECT_TRUE(events.empty()) << "a later entry of the same identity will report";
    serve();
    serve();
    serve();
    EXPECT_EQ(events, (Strings{"done 9 3 2 1", "done 9 3 1 1", "done 9 2 1 1"}));
}

TEST_F(ExchangeTest, AGiveUpTakesItsIdentityWithIt)
{
    for (const int perVarStation : {0, 1}) {
        info.perVarStation = perVarStation;
        core.writeList.clear();
        core.writeBurst = 0;
        events.clear();
        queueWrite(wordWrite(0, 3, 1));
        queueWrite(wordWrite(2, 3, 2));
        queueWrite(wordWrite(4, 3, 1));
        queueWrite(wordWrite(6, 3, 1, 2)); // another station
        queueWrite(wordWrite(8, 4, 1));
        queueWrite(wordWrite(10, 3, 1));
        next();
        EXPECT_EQ(silence(), 44);
        EXPECT_EQ(events, (Strings{"done 9 3 1 2", "fail 3 1"}));
        EXPECT_EQ(rangesOf(core.writeList),
                  perVarStation ? "7[2,3) 7[6,7) 7[8,9)" : "7[2,3) 7[8,9)");
    }
}

TEST_F(ExchangeTest, OneShotReadsReportInTheOwnAreaOnly)
{
    RW_VAR record = read(AREA_HOLDING, 5, 1);
    record.ownerId = 7;
    record.ownerTag = 70;
    for (const int areaNo : {4, 5}) {
        const bool local = areaNo == 4;
        record.areaNo = areaNo;
        core.onceBurst = 0;
        events.clear();
        driver.AddListOnceReadVar(&record, QUEUE_UNCONDITIONALLY);
        driver.AddListOnceReadVar(&record, QUEUE_UNCONDITIONALLY);
        next();
        EXPECT_EQ(answer(GOOD_READ), local ? 1 : 100);
        EXPECT_TRUE(events.empty()) << "the second one will report";
        next();
        EXPECT_EQ(answer(GOOD_READ), local ? 1 : 100);
        EXPECT_EQ(events, local ? Strings{"done 9 7 70 1"} : Strings{});
        EXPECT_EQ(core.retVar.ownerTag, 70);

        events.clear();
        for (int i = 0; i < 3; ++i)
            driver.AddListOnceReadVar(&record, QUEUE_UNCONDITIONALLY);
        next();
        EXPECT_EQ(silence(), local ? 48 : 148);
        EXPECT_EQ(events, local ? (Strings{"done 9 7 70 2", "fail 7 1"}) : Strings{"fail 7 1"});
        EXPECT_TRUE(core.onceReadList.isEmpty());
    }
}

TEST_F(ExchangeTest, ACycleIsDoneAfterOneMoreThanItsEntries)
{
    rebuild("6:0:1 7:0:1 8:0:1");
    for (int i = 0; i < 3; ++i) {
        serve();
        EXPECT_EQ(info.cycleDone, 0);
    }
    serve();
    EXPECT_EQ(info.cycleDone, 1);
    EXPECT_EQ(core.cycleCount, 0);

    serve();
    EXPECT_EQ(core.cycleCount, 0) << "counted only while it is not done";
    info.retryLimit = 1;
    next();
    EXPECT_EQ(silence(), 0);
    EXPECT_EQ(info.cycleDone, 0);
    serve();
    EXPECT_EQ(core.cycleCount, 1);
    next();
    silence();
    EXPECT_EQ(core.cycleCount, 0);
}

TEST_F(ExchangeTest, RemoteRepliesCountTowardNoCycle)
{
    RW_VAR record = read(AREA_HOLDING, 0, 1);
    record.areaNo = 5;
    queueRead(record);
    answer(GOOD_READ);
    EXPECT_EQ(core.cycleCount, 0);
}

TEST_F(ExchangeTest, ARebuildWhileAReadIsOnTheLine)
{
    rebuild("7:10:1");
    next();
    rebuild("7:80:1 7:200:1");
    EXPECT_EQ(answer(GOOD_READ), 1);
    EXPECT_EQ(stored(KIND_HOLDING_WORD, "10", 1), "2A 00");
    EXPECT_EQ(core.retVar.addr, 80);
    EXPECT_EQ(rangesOf(core.readList), "7[200,201) 7[80,81)");

    next();
    rebuild("");
    EXPECT_EQ(silence(), 41);
    EXPECT_EQ(core.retVar.addr, 80) << "nothing to copy from an empty list";
    EXPECT_EQ(events, Strings{"fail 0 1"});
}

TEST_F(ExchangeTest, Broadcasts)
{
    RW_VAR record = wordWrite(0, 1, 1, 0);
    queueWrite(record);
    next();
    EXPECT_EQ(silence(), 42) << "function 16 waits for an answer";
    info.remoteMode = 1;
    queueWrite(record);
    next();
    EXPECT_EQ(silence(), 1);
    EXPECT_EQ(events.back(), "done 9 1 1 1");
    queueWrite(record);
    next();
    EXPECT_EQ(answer(GOOD_WRITE), 72);
}

TEST_F(ExchangeTest, RemoteAreaReadModifyWrite)
{
    RW_VAR record = write(KIND_HOLDING_BYTE, 5, 1, "AB", 3, 3);
    record.areaNo = 5;
    queueWrite(record);
    next();
    EXPECT_EQ(answer("01 03 02 12 34 B5 33"), 1) << "the read half is used";
    EXPECT_EQ(next(9), "01 10 00 02 00 01 02 AB 34");
    EXPECT_EQ(answer(GOOD_WRITE), 100);
    EXPECT_EQ(events, Strings{"done 9 3 3 1"});

    info.frameDone = 0;
    record = read(AREA_HOLDING, 0, 1);
    record.areaNo = 5;
    record.rmwMark = -1;
    queueRead(record);
    info.frameDone = 1;
    EXPECT_EQ(answer(GOOD_READ), 100) << "one frame was answered before";
    EXPECT_EQ(stored(KIND_HOLDING_WORD, "0", 1), "00 00");
}

// A count of -3 makes a remote read whose reply may have any length.
TEST_F(ExchangeTest, RepliesOfAnyLength)
{
    struct Row {
        const char *reply;
        int verdict;
        const char *registers; // 0 to 3
    };
    const Row rows[] = {
        {"01 03 05 11 22 33 44 55 47 D9", 1,
         "22 11 44 33 00 00 00 00"}, // the fifth byte is dropped
        {"01 03 00 20 F0", 1, "22 11 44 33 00 00 00 00"},
        {"01 7E 80", 1, "22 11 44 33 00 00 00 00"},
        {"FF FF", 1, "22 11 44 33 00 00 00 00"}, // the CRC of nothing
        {"FF", 11, "22 11 44 33 00 00 00 00"},
        {"01 03 06 01 02 03 04 05 06 9B B3", 1, "02 01 04 03 06 05 00 00"},
        {"", 41, "02 01 04 03 06 05 00 00"},
    };
    info.remoteMode = 1;
    for (const Row &row : rows) {
        core.readList.clear();
        queueRead(read(AREA_HOLDING, 0, -3));
        EXPECT_EQ(core.pendingList.first().replyLen, -1);
        EXPECT_EQ(answer(row.reply), row.verdict) << row.reply;
        EXPECT_EQ(stored(KIND_HOLDING_WORD, "0", 4), row.registers) << row.reply;
    }
    core.readList.clear();
    queueRead(read(AREA_HOLDING, 0, -3));
    EXPECT_EQ(answer(GOOD_READ, -1), 71);
}
