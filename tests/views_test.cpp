// The table on a terminal: widths of characters, keys, typed lines, scrolling, narrow columns.
#include "host/views/keys.h"
#include "host/views/screen_text.h"
#include "host/views/table_input.h"
#include "host/views/value_columns.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace velko;

namespace
{

/// A letter for each key; characters stand for themselves.
std::string namesOf(const std::vector<Key> &keys)
{
    const std::string letters = "c\n<UDLEudPNhe"; // in the order of Key::Kind
    std::string names;
    for (const Key &key : keys)
        names += key.kind == Key::CHARACTER ? key.text : "[" + letters.substr(key.kind, 1) + "]";
    return names;
}

ValueRow rowOf(const std::string &name, const std::string &value, Freshness freshness,
               const std::string &reason)
{
    ValueRow row;
    row.variable.name = name;
    row.variable.address = "100";
    row.text = value;
    row.state.freshness = freshness;
    row.state.age = milliseconds(100);
    row.state.lastAttempt = Verdict(Verdict::NO_REPLY, reason);
    return row;
}

std::string withoutSpaces(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

/// The characters of `cell` in the order of the lines; a cell may continue below.
bool containsInOrder(const std::vector<std::string> &lines, const std::string &cell)
{
    const std::string wanted = withoutSpaces(cell);
    size_t found = 0;
    for (const std::string &line : lines) {
        // The longest part of the rest that this line contains.
        for (size_t length = wanted.size() - found; length > 0; --length) {
            if (withoutSpaces(line).find(wanted.substr(found, length)) != std::string::npos) {
                found += length;
                break;
            }
        }
    }
    return found == wanted.size();
}

} // namespace

TEST(ScreenText, Widths)
{
    const struct {
        const char *text;
        size_t width;
    } rows[] = {{"", 0},           {"abc", 3},        {"größe", 5}, {"温度", 4}, {"e\u0301", 1},
                {"\U0001F321", 1}, {"\U0001F680", 2}, {"…", 1},     {"한글", 4}, {"\u200b", 0}};
    for (const auto &row : rows)
        EXPECT_EQ(widthOf(row.text), row.width) << row.text;
}

TEST(ScreenText, PiecesOfAWidth)
{
    const struct {
        const char *text;
        size_t width;
        const char *left;
        const char *shortened;
        const char *right;
    } rows[] = {
        {"abcdef", 6, "abcdef", "abcdef", "abcdef"},
        {"abcdef", 5, "abcd…", "ab…ef", "…cdef"},
        {"abcdef", 1, "…", "…", "…"},
        {"abcdef", 0, "", "", ""},
        {"温度計の値", 6, "温度…", "温…値", "…の値"},
        {"温度", 3, "温…", "…", "…度"},
        {"ne\u0301e\u0301o", 3, "ne\u0301…", "n…o", "…e\u0301o"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(leftOf(row.text, row.width), row.left);
        EXPECT_EQ(shortened(row.text, row.width), row.shortened);
        EXPECT_EQ(rightOf(row.text, row.width), row.right);
    }
    using Pieces = std::vector<std::string>;
    EXPECT_EQ(wrapped("no response", 8), (Pieces{"no ", "response"}));
    EXPECT_EQ(wrapped("abcdef", 4), (Pieces{"abcd", "ef"}));
    EXPECT_EQ(wrapped("温度計", 5), (Pieces{"温度", "計"}));
    EXPECT_EQ(wrapped("温", 1), (Pieces{"温"}));
    EXPECT_EQ(wrapped("", 4), (Pieces{""}));
    EXPECT_EQ(withoutLast("xe\u0301"), "x");
    EXPECT_EQ(withoutLast(""), "");
    EXPECT_EQ(printable("a\x1b[2J\x7f\u009b温"), "a?[2J??温");
}

TEST(Keys, OfBytes)
{
    const struct {
        const char *bytes;
        const char *keys;
    } rows[] = {
        {"a=1\r", "a=1[\n]"},
        {"\x7f\b\x15\x04\x0c", "[<][<][U][D][L]"},
        {"\x1b[A\x1b[B\x1bOA\x1bOB", "[u][d][u][d]"},
        {"\x1b[5~\x1b[6~\x1b[1;5A\x1b[5;2~", "[P][N][u][P]"},
        {"\x1b[H\x1b[F\x1bOH\x1bOF\x1b[1~\x1b[4~\x1b[7~\x1b[8~", "[h][e][h][e][h][e][h][e]"},
        {"\x1b[C\x1b[D\x1b[3~\x1b[15~\x1b[[Ax", "x"}, // unknown ones, and F1 of the Linux console
        {"\x1bx", "[E]x"},
        {"\x1b\x1b[A", "[E][u]"},
        {"温é", "温é"},
        {"\xe6x\xffy", "\xef\xbf\xbdx\xef\xbf\xbdy"}, // not UTF-8
        {"\x01\x02z", "z"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(namesOf(KeyReader().read(row.bytes)), row.keys);
        KeyReader reader; // the same in single bytes
        std::string names;
        for (const char *byte = row.bytes; *byte != '\0'; ++byte)
            names += namesOf(reader.read(std::string(1, *byte)));
        EXPECT_EQ(names, row.keys);
    }
}

TEST(Keys, EscapeIsAKeyIfNothingFollows)
{
    KeyReader reader;
    EXPECT_EQ(namesOf(reader.read("\x1b")), "");
    EXPECT_EQ(namesOf(reader.settle()), "[E]");
    EXPECT_EQ(namesOf(reader.settle()), "");
    EXPECT_EQ(namesOf(reader.read("\x1b[1;")), ""); // a sequence that never ends
    EXPECT_EQ(namesOf(reader.settle()), "");
    EXPECT_EQ(namesOf(reader.read("\x1b[" + std::string(100, '1') + "x")).substr(0, 1), "1");
}

TEST(TableInput, EditsALine)
{
    TableInput input;
    EXPECT_TRUE(input.type("a = x\u0301\x7fü").empty());
    EXPECT_EQ(input.line(), "a = ü");
    EXPECT_EQ(input.type("/\x1b[A \r b=2\r\r \r"), (std::vector<std::string>{"a = ü/", "b=2"}));
    EXPECT_EQ(input.line(), "");
    input.type("abc\x15");
    EXPECT_EQ(input.line(), "");
    input.type(std::string(20000, 'x'));
    EXPECT_EQ(input.line().size(), 10000u);
    input.type("\x04");
    EXPECT_FALSE(input.isEnd());
    input.type("\x1b");
    input.type(""); // Escape
    EXPECT_EQ(input.line(), "");
    input.type("\x04");
    EXPECT_TRUE(input.isEnd());
}

TEST(TableInput, Filters)
{
    TableInput input;
    input.type("/tem");
    EXPECT_TRUE(input.isFiltering());
    EXPECT_EQ(input.filter(), "tem");
    EXPECT_TRUE(input.type("p\r").empty());
    EXPECT_FALSE(input.isFiltering());
    EXPECT_EQ(input.type("a=1\r"), std::vector<std::string>{"a=1"});
    EXPECT_EQ(input.filter(), "temp"); // while lines are typed
    input.type("\x1b");
    input.type("");
    EXPECT_EQ(input.filter(), "");
    input.type("/x\rabc\x1b");
    input.type("");
    EXPECT_EQ(input.line() + input.filter(), "x"); // Esc clears the line first
    input.type("/x\x7f\x7f");
    EXPECT_FALSE(input.isFiltering());
    input.type("/x\r/\r");
    EXPECT_EQ(input.filter(), ""); // an empty one clears
}

TEST(TableInput, Scrolls)
{
    TableInput input;
    const auto topAfter = [&](const char *keys, size_t last) {
        input.type(keys);
        return input.top(last, 10);
    };
    EXPECT_EQ(topAfter("", 25), 0u);
    EXPECT_EQ(topAfter("\x1b[A", 25), 0u);
    EXPECT_EQ(topAfter("\x1b[B\x1b[B", 25), 2u);
    EXPECT_EQ(topAfter("\x1b[6~", 25), 12u);
    EXPECT_EQ(topAfter("\x1b[6~\x1b[6~", 25), 25u);
    EXPECT_EQ(topAfter("\x1b[A", 25), 24u);
    EXPECT_EQ(topAfter("\x1b[5~", 25), 14u);
    EXPECT_EQ(topAfter("\x1b[F", 25), 25u);
    EXPECT_EQ(topAfter("", 3), 3u); // fewer rows, or a larger terminal
    EXPECT_EQ(topAfter("\x1b[H", 25), 0u);
    EXPECT_EQ(topAfter("\x1b[F/", 25), 25u);
    EXPECT_EQ(topAfter("a", 5), 0u);
}

// Whatever the width, values and states are complete and no line is too long.
TEST(ValueColumns, KeepValuesAndStates)
{
    const std::string longValue = "0123456789 23456789 3456789 456789 56789 6789 789 89 9";
    const std::vector<ValueRow> rows = {
        rowOf("conveyor.temperature", "-97.41024", Freshness::GOOD, ""),
        rowOf("温度計の現在値と設定値", "12", Freshness::STATION_OFFLINE, "no response"),
        rowOf("x", longValue, Freshness::STALE, "exception 2 (illegal data address)")};
    const std::vector<const ValueRow *> pointers = {&rows[0], &rows[1], &rows[2]};
    for (size_t width = 10; width < 160; ++width) {
        const ValueColumns table(pointers, width);
        EXPECT_LE(widthOf(table.heading()), width);
        for (const ValueRow &row : rows) {
            const std::vector<std::string> lines = table.lines(row);
            for (const std::string &line : lines)
                EXPECT_LE(widthOf(line), width) << line;
            if (width < 20)
                continue; // single letters cannot be told from those of other cells
            EXPECT_TRUE(containsInOrder(lines, row.text)) << width << lines.front();
            EXPECT_TRUE(containsInOrder(lines, row.state.lastAttempt.text)) << width;
        }
    }
    const ValueColumns wide(pointers, 200);
    EXPECT_EQ(wide.lines(rows[1]).size(), 1u);
    EXPECT_EQ(
        wide.lines(rows[1]).front().find("温度計の現在値と設定値  1        holding word 100  12 "),
        0u);
    const ValueColumns narrow({pointers[1]}, 50);
    // 15 columns remain for the name, without the age.
    EXPECT_EQ(narrow.lines(rows[1]),
              std::vector<std::string>{"温度計…設定値   12    station offline: no response"});
}
