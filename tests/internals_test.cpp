// What no export reaches: helpers that nothing in the library calls, and states that reply handling
// never brings about.
#include "bytes/Func_Check.h"
#include "driver/modbus_rtu_master.h"
#include "driver/variable_kinds.h"
#include "exchange/result_codes.h"
#include "lists/Func_Initi.h"
#include "store/Func_DealData.h"

#include <gtest/gtest.h>

namespace
{

struct SumRow {
    const char *bytes; // hex
    int crc;
    int sum;
    int lrc;
    int xorSum;
};

const SumRow sums[] = {
    {"", 0xFFFF, 0, 256, 0},
    {"2A", 0x9F3E, 0x2A, 0xD6, 0x2A},
    {"31 32 33 34 35 36 37 38 39", 0x4B37, 0x1DD, 0x23, 0x31},
    {"01 03 00 00 00 01", 0x0A84, 5, 251, 3},
    {"80 80", 0xD061, 0x100, 256, 0},
};

} // namespace

TEST(Checksums, OfBytes)
{
    for (const SumRow &row : sums) {
        const QByteArray array = QByteArray::fromHex(row.bytes);
        const auto *const bytes = reinterpret_cast<const unsigned char *>(array.constData());
        const auto length = static_cast<unsigned short>(array.size());
        EXPECT_EQ(CalCRC(bytes, length), row.crc) << row.bytes;
        EXPECT_EQ(CalSUM(bytes, length), row.sum) << row.bytes;
        EXPECT_EQ(CalLRC(bytes, length), row.lrc) << row.bytes;
        EXPECT_EQ(CalXOR(bytes, length), row.xorSum) << row.bytes;
    }
    const std::vector<unsigned char> many(300, 0xFF);
    EXPECT_EQ(CalSUM(many.data(), 300), 10964);
}

TEST(Checksums, HexadecimalDigits)
{
    const std::pair<int, int> toAscii[] = {{0, '0'},  {9, '9'},  {10, 'A'},
                                           {15, 'F'}, {16, 'G'}, {-1, '/'}};
    for (const auto &row : toAscii)
        EXPECT_EQ(DigitalToASCII(row.first), row.second);
    const std::pair<int, int> fromAscii[] = {{'0', 0},  {'9', 9},  {':', 10}, {'?', 15}, {'@', 0},
                                             {'A', 10}, {'F', 15}, {'a', 42}, {'/', 0},  {-9, 0}};
    for (const auto &row : fromAscii)
        EXPECT_EQ(ASCIIToDigital(row.first), row.second) << row.first;
}

TEST(Kinds, OutsideTheirRange)
{
    for (const int kind : {-1, 12, 14})
        EXPECT_EQ(std::make_pair(getPlcReg(kind), getPlcAdd(kind)), std::make_pair(kind, 0));
}

TEST(ResultCodes, WithoutAPendingFrame)
{
    PLC_driver.pendingList.clear();
    EXPECT_EQ(SwitchErrorReturn(70), 71);
    EXPECT_EQ(GetDriverReturnValue(8), 200);
    EXPECT_EQ(GetDriverReturnValue(-1), 200);
}

TEST(Sorting, IsStableSignedAndFast)
{
    QList<RW_VAR> records;
    const int count = 100000;
    for (int i = 0; i < count; ++i) {
        RW_VAR record;
        record.addr = (i * 7919) % 1000 - 500;
        record.ownerTag = i;
        records.append(record);
    }
    Bubble_Sort(&records); // would take minutes if it compared each with each
    for (int i = 1; i < count; ++i) {
        const RW_VAR &left = records.at(i - 1);
        const RW_VAR &right = records.at(i);
        ASSERT_TRUE(left.addr < right.addr
                    || (left.addr == right.addr && left.ownerTag < right.ownerTag))
            << i;
    }
}

TEST(ReadModifyWrite, NothingChangesWhereItCannotBeCompleted)
{
    const QByteArray reply = QByteArray::fromHex("01 03 02 12 34");
    const QByteArray tooShort = reply.left(4);
    Protocol frame;
    frame.frame = "untouched";
    PLC_driver.pendingMerge.active = true;
    PLC_driver.pendingMerge.varKind = KIND_HOLDING_BYTE;
    PLC_driver.pendingList = {frame};
    SpecialRegisterSave(&reply); // no write frame behind the read
    PLC_driver.pendingList.append(frame);
    SpecialRegisterSave(&tooShort);
    EXPECT_EQ(PLC_driver.pendingList.at(1).frame, "untouched");
    PLC_driver.pendingMerge.active = false;
    SpecialRegisterSave(&reply);
    EXPECT_EQ(PLC_driver.pendingList.at(1).frame, "untouched");
    PLC_driver.pendingMerge.active = true;
    SpecialRegisterSave(&reply);
    EXPECT_NE(PLC_driver.pendingList.at(1).frame, "untouched");
    EXPECT_EQ(PLC_driver.pendingList.at(0).frame, "untouched");
    PLC_driver.pendingList.clear();
}
