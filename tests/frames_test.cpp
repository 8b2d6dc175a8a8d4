// Request frames, byte by byte, and what each expects as its reply.
#include "tests/driver_test.h"

namespace
{

struct ReadRow {
    int station;
    int area;
    int firstRegister;
    int count;
    const char *frame;
    int replyLen;
    int dataLen;
};

const ReadRow reads[] = {
    {1, AREA_HOLDING, 100, 2, "01 03 00 64 00 02 85 D4", 9, 4},
    {1, AREA_HOLDING_5000, 100, 2, "01 03 13 EC 00 02 01 7A", 9, 4},
    {1, AREA_INPUT, 0, 1, "01 04 00 00 00 01 31 CA", 7, 2},
    {2, AREA_INPUT, 10, 10, "02 04 00 0A 00 0A 50 3C", 25, 20},
    {1, AREA_HOLDING_5000, 65535, 1, "01 03 13 87 00 01 30 A7", 7, 2}, // the sum wraps
    {1, AREA_HOLDING, 65536 + 7, 1, "01 03 00 07 00 01 35 CB", 7, 2},  // and so does the number
    {257, AREA_HOLDING, 0, 1, "01 03 00 00 00 01 84 0A", 7, 2},        // low byte of the station
    {1, AREA_HOLDING, 0, 65536 + 2, "01 03 00 00 00 02 C4 0B", 9, 4},  // and 16 bits of the count
    {0, AREA_HOLDING, 0, 125, "00 03 00 00 00 7D 84 3A", 255, 250},
    {1, KIND_COUNT, 3, 1, "01 03 00 03 00 01 74 0A", 7, 2}, // no area: no offset
};

struct WriteRow {
    int kind;
    int addr;
    int count;
    const char *value;
    const char *frame; // empty: none
};

const WriteRow writes[] = {
    {KIND_HOLDING_WORD, 200, 1, "34 12", "01 10 00 64 00 01 02 12 34 A3 03"},
    {KIND_HOLDING_DWORD, 8, 2, "78 56 34 12", "01 10 00 04 00 02 04 56 78 12 34 6E BA"},
    {KIND_HOLDING_5000_DWORD, 8, 2, "78 56 34 12", "01 10 13 8C 00 02 04 56 78 12 34 BE 4C"},
    {KIND_HOLDING_5000_WORD, 0, 3, "01 02 03 04 05 06",
     "01 10 13 88 00 03 06 02 01 04 03 06 05 35 B7"},
    {KIND_HOLDING_DWORD, 0, 3, "01 02 03 04 05 06", "01 10 00 00 00 03 06 02 01 04 03 06 05 E8 31"},
    {KIND_HOLDING_WORD, 4, 2, "AB",
     "01 10 00 02 00 02 04 00 AB 00 00 03 96"}, // missing bytes are 0
    {KIND_HOLDING_WORD, 2147483647, 1, "01 00", "01 10 FF FF 00 01 02 00 01 7C 90"},
    {KIND_HOLDING_WORD, -1, 1, "01 00", "01 10 00 00 00 01 02 00 01 67 90"},
    {KIND_INPUT_WORD, 200, 1, "34 12", ""},
    {KIND_INPUT_BIT, 3, 1, "01", ""},
    {KIND_INPUT_BYTE, 3, 1, "01", ""},
    {KIND_INPUT_DWORD, 4, 2, "01 02 03 04", ""},
    {KIND_COUNT, 4, 2, "01 02 03 04", ""},
    {-1, 4, 2, "01 02 03 04", ""},
    {KIND_HOLDING_WORD, 0, 32764, "01", ""}, // its frame would pass 65,535 bytes
    {KIND_HOLDING_WORD, 0, -1, "01", ""},
};

struct MergeRow {
    int kind;
    int addr;
    const char *value;
    const char *readFrame;
    const char *readReply;
    const char *writeFrame;
};

const MergeRow merges[] = {
    // bits
    {1, 13, "01", "01 03 00 00 00 01 84 0A", "01 03 02 00 FF F8 04",
     "01 10 00 00 00 01 02 20 FF FF D0"},
    {1, 13, "00", "01 03 00 00 00 01 84 0A", "01 03 02 FF FF B9 F4",
     "01 10 00 00 00 01 02 DF FF BE 20"},
    {1, 15, "FF", "01 03 00 00 00 01 84 0A", "01 03 02 00 00 B8 44",
     "01 10 00 00 00 01 02 80 00 C7 90"},
    {1, 16, "02", "01 03 00 01 00 01 D5 CA", "01 03 02 00 00 B8 44",
     "01 10 00 01 00 01 02 00 01 66 41"},
    {1, 37, "01", "01 03 00 02 00 01 25 CA", "01 03 02 12 34 B5 33",
     "01 10 00 02 00 01 02 12 34 AA C5"},
    {2, 37, "", "01 03 13 8A 00 01 A1 64", "01 03 02 12 34 B5 33",
     "01 10 13 8A 00 01 02 12 14 97 54"},
    // bytes
    {4, 5, "AB", "01 03 00 02 00 01 25 CA", "01 03 02 12 34 B5 33",
     "01 10 00 02 00 01 02 AB 34 D9 55"},
    {4, 4, "AB", "01 03 00 02 00 01 25 CA", "01 03 02 12 34 B5 33",
     "01 10 00 02 00 01 02 12 AB EA AD"},
    {4, 201, "7F 80 81", "01 03 00 64 00 01 C5 D5", "01 03 02 00 00 B8 44",
     "01 10 00 64 00 01 02 7F 00 8E 44"},
    {5, 200, "7F", "01 03 13 EC 00 01 41 7B", "01 03 02 99 99 12 7E",
     "01 10 13 EC 00 01 02 99 7F B9 8D"},
};

struct RemoteRow {
    int ownerId;
    int rwFlag;
    int areaNo;
    int station;
    int kind;
    int addr;
    int count;
    int rmwMark;
    int remoteArg;
    const char *value;
    const char *frame;
    int replyLen;
    int dataLen;
};

const RemoteRow remotes[] = {
    {0, 0, 1, 1, 7, 100, 2, 0, 0, "",
     "16 00 00 01 01 00 07 00 00 00 64 00 02 00 00 00 00 00 00 00 00 85", 9, 4},
    {0, 0, 1, 1, 7, 100, 2, -1, 0, "",
     "16 00 00 01 01 00 07 00 00 00 64 00 02 FF FF FF FF 00 00 00 00 81", 9, 4},
    {5, 1, 2, 3, 7, 200, 1, 0, 0, "34 12",
     "18 05 01 02 03 00 07 00 00 00 C8 00 01 00 00 00 00 00 00 00 00 34 12 39", 8, 0},
    {5, 1, 2, 3, 10, 0x01020304, 2, 0, 0x0A0B0C0D, "78 56 34 12",
     "1A 05 01 02 03 00 0A 01 02 03 04 00 02 00 00 00 00 0A 0B 0C 0D 78 56 34 12 7D", 8, 0},
    // a bit goes out at once, and nobody answers a broadcast
    {0, 1, 4, 0, 1, 37, 1, 0, 0, "01",
     "17 00 01 04 00 00 01 00 00 00 25 00 01 00 00 00 00 00 00 00 00 01 44", 0, 0},
    {0, 0, 4, 0, 7, 0, 1, 0, 0, "",
     "16 00 00 04 00 00 07 00 00 00 00 00 01 00 00 00 00 00 00 00 00 22", 7, 2},
};

} // namespace

using FramesTest = DriverTest;

TEST_F(FramesTest, Reads)
{
    for (const ReadRow &row : reads) {
        RW_VAR record = read(row.area, row.firstRegister, row.count);
        record.station = row.station;
        core.readList.clear();
        core.pendingList.clear();
        driver.AddListReadVar(&record);
        info.frameDone = 1;
        EXPECT_EQ(next(), row.frame);
        const Protocol *const request = driver.ComCommunication();
        EXPECT_EQ(request->replyLen, row.replyLen) << row.frame;
        EXPECT_EQ(request->dataOffset, 3);
        EXPECT_EQ(request->dataLen, row.dataLen) << row.frame;
        EXPECT_EQ(request->var.addr, row.firstRegister);
        EXPECT_EQ(core.pendingList.size(), 1);
        EXPECT_EQ(info.frameTotal, 1);
        EXPECT_EQ(info.frameDone, 0);
    }
}

TEST_F(FramesTest, Writes)
{
    for (const WriteRow &row : writes) {
        const RW_VAR record = write(row.kind, row.addr, row.count, row.value);
        info.frameTotal = 7;
        core.writeBurst = 0;
        driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
        EXPECT_EQ(next(), row.frame);
        if (core.pendingList.isEmpty()) {
            EXPECT_EQ(info.frameTotal, 7);
            EXPECT_TRUE(core.writeList.isEmpty()) << "it would hold back what is behind it";
            continue;
        }
        EXPECT_EQ(core.pendingList.first().replyLen, 8);
        EXPECT_EQ(core.pendingList.first().dataOffset, 0);
        EXPECT_EQ(core.pendingList.first().dataLen, 0);
        EXPECT_EQ(info.frameTotal, 1);
        EXPECT_EQ(answer(GOOD_WRITE), RESULT_GOOD);
    }
    EXPECT_EQ(events.size(), 8U) << "a write that gets no frame is not reported";
}

TEST_F(FramesTest, LongestWriteFrame)
{
    const RW_VAR record = write(KIND_HOLDING_WORD, 0, 32763, "34 12");
    driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
    EXPECT_EQ(next(9), "01 10 00 00 7F FB F6 12 34");
    EXPECT_EQ(core.pendingList.first().frameLen, 65535);
}

TEST_F(FramesTest, BitsAndBytesAreMergedIntoTheirRegister)
{
    for (const MergeRow &row : merges) {
        const RW_VAR record = write(row.kind, row.addr, 1, row.value);
        core.writeBurst = 0;
        driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
        EXPECT_EQ(next(), row.readFrame);
        EXPECT_EQ(core.pendingList.first().replyLen, 7);
        EXPECT_EQ(core.pendingList.first().var.rmwMark, -1);
        EXPECT_EQ(info.frameTotal, 2);
        EXPECT_EQ(answer(row.readReply), RESULT_GOOD);
        EXPECT_TRUE(events.empty()) << "the write is not finished yet";
        EXPECT_EQ(next(), row.writeFrame);
        EXPECT_EQ(core.pendingList.first().var.rmwMark, 0);
        EXPECT_EQ(core.pendingList.first().var.rwFlag, REQUEST_WRITE);
        EXPECT_EQ(answer(GOOD_WRITE), RESULT_GOOD);
        EXPECT_EQ(events, std::vector<std::string>{"done 9 0 0 1"});
        EXPECT_FALSE(core.pendingMerge.active);
        events.clear();
    }
}

TEST_F(FramesTest, RemoteMode)
{
    info.remoteMode = 1;
    for (const RemoteRow &row : remotes) {
        RW_VAR record = write(row.kind, row.addr, row.count, row.value, row.ownerId);
        record.rwFlag = row.rwFlag;
        record.areaNo = row.areaNo;
        record.station = row.station;
        record.rmwMark = row.rmwMark;
        record.remoteArg = row.remoteArg;
        core.pendingList.clear();
        core.writeList.clear();
        core.readList.clear();
        if (row.rwFlag == REQUEST_WRITE)
            driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
        else
            driver.AddListReadVar(&record);
        core.writeBurst = 0;
        EXPECT_EQ(next(), row.frame);
        const Protocol *const request = driver.ComCommunication();
        EXPECT_EQ(request->replyLen, row.replyLen) << row.frame;
        EXPECT_EQ(request->dataLen, row.dataLen) << row.frame;
        EXPECT_EQ(request->dataOffset, row.rwFlag == REQUEST_WRITE ? 0 : 3);
        EXPECT_EQ(info.frameTotal, 1);
    }
}

TEST_F(FramesTest, RemoteFramesOverTheirLimits)
{
    info.remoteMode = 1;
    RW_VAR record = write(KIND_HOLDING_WORD, 0, 117, "");
    record.value = QByteArray(234, '\1');
    driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
    EXPECT_EQ(next(2), "00 00") << "the length byte of a 256 byte frame has wrapped";
    EXPECT_EQ(answer(GOOD_WRITE), RESULT_GOOD);

    record.value = QByteArray(65535 - 22, '\1');
    driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
    EXPECT_EQ(driver.ComCommunication()->frameLen, 65535);
    EXPECT_EQ(answer(GOOD_WRITE), RESULT_GOOD);

    record.value = QByteArray(65535 - 21, '\1');
    driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
    EXPECT_EQ(next(), "");
    EXPECT_TRUE(core.writeList.isEmpty());
}
