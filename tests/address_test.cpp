// Address texts, linear offsets and register ranges.
#include "tests/driver_test.h"

namespace
{

struct TextRow {
    int kind;
    const char *text;
    int offset;
};

const TextRow texts[] = {
    {KIND_HOLDING_BIT, "3.5", 29},
    {KIND_INPUT_BIT, "0.15", 15},
    {KIND_HOLDING_5000_BIT, "0.0", 0},
    {KIND_HOLDING_BIT, "3.9", 33},
    {KIND_HOLDING_BIT, "3.", 24},
    {KIND_HOLDING_BIT, ".7", 7},
    {KIND_HOLDING_BIT, "a.b", 0},
    {KIND_HOLDING_BIT, "-1.9", 1},
    {KIND_HOLDING_BIT, "3", -1},
    {KIND_HOLDING_BIT, "", -1},
    {KIND_HOLDING_BIT, "3.5.1", -1},
    {KIND_HOLDING_BIT, "3,5", -1},
    {KIND_HOLDING_BIT, "268435455.7", 2147483647},
    {KIND_HOLDING_BIT, "268435455.8", -1},
    {KIND_INPUT_BYTE, "5", 5},
    {KIND_HOLDING_BYTE, "2147483647", 2147483647},
    {KIND_HOLDING_BYTE, "2147483648", 0}, // no number of 32 bits, so it reads as no number
    {KIND_HOLDING_5000_BYTE, "-3", -3},
    {KIND_INPUT_WORD, "100", 200},
    {KIND_INPUT_WORD, "abc", 0},
    {KIND_INPUT_WORD, "12x", 0},
    {KIND_INPUT_WORD, "-4", -8},
    {KIND_HOLDING_WORD, "1073741823", 2147483646},
    {KIND_HOLDING_WORD, "1073741824", -1},
    {KIND_HOLDING_5000_WORD, "7", 14},
    {KIND_INPUT_DWORD, "7", 28},
    {KIND_HOLDING_DWORD, "536870911", 2147483644},
    {KIND_HOLDING_DWORD, "536870912", -1},
    {KIND_HOLDING_5000_DWORD, "2", 8},
    {KIND_COUNT, "1", -1},
    {-1, "1", -1},
    {2147483647, "1.1", -1},
};

struct RangeRow {
    int kind;
    const char *text;
    int length;
    const char *range;
};

const RangeRow ranges[] = {
    {KIND_HOLDING_BIT, "3.5", 1, "7[1,2)"},
    {KIND_INPUT_BIT, "0.15", 2, "6[0,2)"},
    {KIND_INPUT_BIT, "0.15", 1, "6[0,1)"},
    {KIND_HOLDING_5000_BIT, "2.13", 20, "8[1,4)"}, // bits 13 to 32 of register 1
    {KIND_HOLDING_BIT, "0.1", 0, "7[0,1)"},        // covers its register all the same
    {KIND_HOLDING_BIT, "2.0", 0, "7[1,1)"},
    {KIND_INPUT_BYTE, "5", 1, "6[2,3)"},
    {KIND_HOLDING_BYTE, "5", 2, "7[2,4)"},
    {KIND_HOLDING_5000_BYTE, "301", 3, "8[150,152)"},
    {KIND_INPUT_WORD, "0", 4, "6[0,4)"},
    {KIND_HOLDING_WORD, "100", 3, "7[100,103)"},
    {KIND_HOLDING_5000_WORD, "3", 1, "8[3,4)"},
    {KIND_INPUT_DWORD, "7", 1, "6[14,16)"},
    {KIND_HOLDING_DWORD, "7", 4, "7[14,18)"},
    {KIND_HOLDING_5000_DWORD, "1", 3, "8[2,6)"},
    // 65,536 registers, and one more
    {KIND_HOLDING_WORD, "0", 65536, "7[0,65536)"},
    {KIND_HOLDING_WORD, "0", 65537, "refused"},
    {KIND_HOLDING_DWORD, "0", 65537, "refused"},
    {KIND_HOLDING_BYTE, "0", 131072, "7[0,65536)"},
    {KIND_HOLDING_BYTE, "1", 131072, "refused"},
    {KIND_HOLDING_BIT, "0.0", 1048576, "7[0,65536)"},
    {KIND_HOLDING_BIT, "0.1", 1048576, "refused"},
    {KIND_HOLDING_DWORD, "0", 2147483647, "refused"},
    {KIND_HOLDING_BIT, "0.7", 2147483647, "refused"},
    {KIND_HOLDING_WORD, "0", -1, "refused"},
    {KIND_HOLDING_WORD, "-1", 1, "refused"},
    {KIND_COUNT, "0", 1, "refused"},
};

} // namespace

using AddressTest = DriverTest;

TEST_F(AddressTest, TextsBecomeLinearOffsets)
{
    for (const TextRow &row : texts)
        EXPECT_EQ(driver.PLCAddressChangeIntef(row.kind, QString::fromLatin1(row.text)), row.offset)
            << "kind " << row.kind << " \"" << row.text << "\"";
}

TEST_F(AddressTest, VariablesBecomeRegisterRanges)
{
    info.maxRegs = 100000;
    for (const RangeRow &row : ranges) {
        core.onceReadList.clear();
        RW_VAR record = once(row.kind, row.text, row.length);
        const int queued = driver.AddListOnceReadVar(&record, QUEUE_CHECKED);
        const bool refused = std::string(row.range) == "refused";
        EXPECT_EQ(queued, !refused && record.count > 0 ? 1 : 0) << row.text;
        EXPECT_EQ(refused ? "refused" : rangesOf({record}), row.range)
            << "kind " << row.kind << " " << row.text << " length " << row.length;
    }
}
