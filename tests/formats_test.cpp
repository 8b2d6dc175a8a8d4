// Values of variables as people write and read them.
#include "host/variables/variable.h"

#include <gtest/gtest.h>

namespace
{

std::string hex(const QByteArray &bytes)
{
    return bytes.toHex().toUpper().toStdString();
}

} // namespace

// Bytes as the driver exchanges them: each register low byte first. Both directions of one row.
TEST(Formats, TextAndBytes)
{
    const struct {
        const char *variable;
        const char *text;
        const char *bytes;
    } rows[] = {
        {"1:0.3", "1", "01"},
        {"1:0.3:bit:3", "1 0 1", "010001"},
        {"4:7", "255", "FF"},
        {"4:7:s8", "-128", "80"},
        {"7:1", "4660", "3412"},
        {"7:1:s16", "-2", "FEFF"},
        {"7:1:hex", "0x12AB", "AB12"},
        {"7:1:u16:2", "1 65535", "0100FFFF"},
        // 0x0A0B0C0D in registers: high byte first on the line.
        {"7:1:u32/ABCD", "168496141", "0B0A0D0C"},
        {"7:1:u32/CDAB", "168496141", "0D0C0B0A"},
        {"7:1:u32/BADC", "168496141", "0A0B0C0D"},
        {"7:1:u32/DCBA", "168496141", "0C0D0A0B"},
        {"10:1", "168496141", "0D0C0B0A"},
        {"10:1:s32", "-2147483648", "00000080"},
        {"7:1:f32/ABCD:2", "-12.5 0.1", "48C10000CC3DCDCC"},
        {"10:1:f32", "3.4028235e+38", "FFFF7F7F"},
        {"7:1:text:4", "Box7", "6F423778"},
        {"7:1:text/BA:4", "Box7", "426F7837"},
        {"4:1:text:4", "Bo", "426F0000"},
        {"7:1:text:3", "a\\x5C", "5C610000"},
    };
    for (const auto &row : rows) {
        const Variable variable = parseVariable(row.variable, 1, Access::READ_WRITE);
        EXPECT_EQ(hex(valueOf(variable, row.text)), row.bytes) << row.variable;
        EXPECT_EQ(textOf(variable, QByteArray::fromHex(row.bytes)), row.text) << row.variable;
    }
}

TEST(Formats, ValuesThatAreRefused)
{
    const struct {
        const char *variable;
        const char *text;
        const char *message;
    } rows[] = {
        {"1:0.0", "2", "out of range: 0 to 1"},
        {"4:0", "256", "0 to 255"},
        {"4:0:s8", "-129", "-128 to 127"},
        {"7:0", "-1", "0 to 65535"},
        {"7:0", "65536", "0 to 65535"},
        {"7:0:s16", "32768", "-32768 to 32767"},
        {"7:0:hex", "10000", "0x0000 to 0xFFFF"},
        {"7:0", "99999999999999999999", "0 to 65535"},
        {"10:0", "4294967296", "0 to 4294967295"},
        {"10:0:f32", "1e39", "-3.4028235e38 to 3.4028235e38"},
        {"10:0:f32", "nan", "not a number"},
        {"10:0:f32", "1,5", "values given: 2, wanted: 1"},
        {"7:0", "", "values given: 0, wanted: 1"},
        {"7:0", "1x", "not a whole number"},
        {"7:0", "0x-1", "not a whole number"},
        {"7:0", "1.5", "not a whole number"},
        {"7:0:text:4", "12345", "5 characters, and 4 fit"},
        {"7:0:text:4", "\\n", "write a backslash as \\x5C"},
        {"7:0:text:4", "\\x1", "write a backslash as \\x5C"},
    };
    for (const auto &row : rows) {
        try {
            valueOf(parseVariable(row.variable, 1, Access::WRITE), row.text);
            ADD_FAILURE() << row.variable << " " << row.text;
        } catch (const std::invalid_argument &error) {
            EXPECT_NE(std::string(error.what()).find(row.message), std::string::npos)
                << row.variable << ": " << error.what();
        }
    }
}

TEST(Formats, VariablesThatArePeoplesMistakes)
{
    for (const char *text :
         {"",         "7",         "7:1:u16:1:1",  "12:1",         "-1:1",          "x:1",
          "7:",       "7:x",       "7:-1",         "7: 1",         "1:5",           "1:5.x",
          "1:1.2.3",  "7:1:u16:0", "7:1:u16:1025", "7:1:u16/AB",   "7:1:u32/ABDC",  "7:1:u8",
          "4:1:u16",  "10:1:u16",  "1:1.1:text",   "7:1:f64",      "7:65535:u16:2", "8:60536",
          "10:32768", "4:131072",  "1:131071.8",   "7:99999999999"})
        EXPECT_THROW(parseVariable(text, 1, Access::READ), std::invalid_argument) << text;
    for (const char *text : {"7:65535", "8:60535", "10:32767", "4:131071", "1:131071.7", "1:0.20",
                             "input-bit:1.1", "holding 5000 double word:1", "7:1:f32:2"})
        EXPECT_NO_THROW(parseVariable(text, 1, Access::READ)) << text;
    EXPECT_THROW(parseVariable("6:1", 1, Access::WRITE), std::invalid_argument);
}
