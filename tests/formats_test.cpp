// Values of variables as people write and read them.
#include "host/core/variables/variable.h"
#include "tests/script.h"

#include <gtest/gtest.h>

using namespace velko;

TEST(Formats, TextAndBytes)
{
    for (const QStringList &row : rowsOf("values.table")) {
        const std::string text = row.at(1).toStdString();
        const Variable variable = parseVariable(row.at(0).toStdString(), 1, Access::READ_WRITE);
        EXPECT_EQ(valueOf(variable, text).toHex().toUpper(), row.at(2).toLatin1()) << text;
        EXPECT_EQ(textOf(variable, QByteArray::fromHex(row.at(2).toLatin1())), text);
    }
}

TEST(Formats, ValuesThatAreRefused)
{
    for (const QStringList &row : rowsOf("refused_values.table")) {
        try {
            valueOf(parseVariable(row.at(0).toStdString(), 1, Access::WRITE),
                    row.at(1).toStdString());
            ADD_FAILURE() << qPrintable(row.join(" | "));
        } catch (const std::invalid_argument &error) {
            EXPECT_TRUE(QString(error.what()).contains(row.at(2)))
                << qPrintable(row.join(" | ")) << ": " << error.what();
        }
    }
}

TEST(Formats, VariablesThatArePeoplesMistakes)
{
    for (const char *text :
         {"",         "7",         "7:1:u16:1:1",  "12:1",          "-1:1",          "x:1",
          "7:",       "7:x",       "7:-1",         "7: 1",          "1:5",           "1:5.x",
          "1:1.2.3",  "7:1:u16:0", "7:1:u16:1025", "7:1:u16/AB",    "7:1:u32/ABDC",  "7:1:u8",
          "4:1:u16",  "10:1:u16",  "1:1.1:text",   "7:1:f64",       "7:65535:u16:2", "8:60536",
          "10:32768", "4:131072",  "1:131071.8",   "7:99999999999", "007:1",         "7:01",
          "1:03.5",   "1:3.05",    "7:1:u16:01"})
        EXPECT_THROW(parseVariable(text, 1, Access::READ), std::invalid_argument) << text;
    for (const char *text : {"7:65535", "8:60535", "10:32767", "4:131071", "1:131071.7", "1:0.20",
                             "input-bit:1.1", "holding 5000 double word:1", "7:1:f32:2"})
        EXPECT_NO_THROW(parseVariable(text, 1, Access::READ)) << text;
    EXPECT_THROW(parseVariable("6:1", 1, Access::WRITE), std::invalid_argument);
}
