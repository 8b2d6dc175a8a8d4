#include "host/core/variables/formats.h"

#include "host/core/sizes/units.h"
#include "host/core/text/joined.h"
#include "host/core/text/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace velko
{

namespace
{

struct TypeRow {
    const char *name;
    int bits;
    long long lowest;
    long long highest;
};

// In the order of Format::Type.
const std::array<TypeRow, 10> types = {{
    {"bit", 1, 0, 1},
    {"u8", BYTE_BITS, 0, 255},
    {"s8", BYTE_BITS, -128, 127},
    {"u16", REGISTER_BITS, 0, 65535},
    {"s16", REGISTER_BITS, -32768, 32767},
    {"hex", REGISTER_BITS, 0, 65535},
    {"u32", DWORD_BITS, 0, 4294967295LL},
    {"s32", DWORD_BITS, -2147483648LL, 2147483647LL},
    {"f32", DWORD_BITS, 0, 0},
    {"text", BYTE_BITS, 0, 0},
}};

const double FLOAT_OVERFLOW = 3.4028235677973366e38; // rounds to infinity, as all above it

const TypeRow &rowOf(const Format &format)
{
    return types.at(static_cast<size_t>(format.type));
}

std::vector<std::string> typeNames()
{
    std::vector<std::string> names;
    names.reserve(types.size());
    for (const TypeRow &row : types)
        names.emplace_back(row.name);
    return names;
}

std::string defaultOrder(Format::Type type)
{
    if (type == Format::TEXT)
        return "AB";
    return types.at(static_cast<size_t>(type)).bits == DWORD_BITS ? "CDAB" : "";
}

int bytesPerValue(const Format &format)
{
    return (rowOf(format).bits + BYTE_BITS - 1) / BYTE_BITS;
}

bool isOrder(const std::string &order, Format::Type type)
{
    static const std::vector<std::string> ofNumbers = {"ABCD", "CDAB", "BADC", "DCBA"};
    static const std::vector<std::string> ofTexts = {"AB", "BA"};
    if (defaultOrder(type).empty())
        return false;
    const std::vector<std::string> &orders = type == Format::TEXT ? ofTexts : ofNumbers;
    return std::find(orders.begin(), orders.end(), order) != orders.end();
}

// Index in the driver's bytes (low byte of each register first) of a byte on the line (high byte
// first).
int storedAt(int index)
{
    return index ^ 1;
}

uint32_t byteOf(const QByteArray &bytes, int index)
{
    return index < bytes.size() ? static_cast<unsigned char>(bytes.at(index)) : 0;
}

uint32_t rawFrom(const QByteArray &bytes, const Format &format, int first)
{
    uint32_t raw = 0;
    if (format.order.empty()) {
        for (int i = bytesPerValue(format) - 1; i >= 0; --i)
            raw = raw << BYTE_BITS | byteOf(bytes, first + i);
        return raw;
    }
    for (int i = 0; i < bytesPerValue(format); ++i) {
        const int shift = BYTE_BITS * ('D' - format.order.at(static_cast<size_t>(i)));
        raw |= byteOf(bytes, first + storedAt(i)) << shift;
    }
    return raw;
}

QByteArray bytesOf(uint32_t raw, const Format &format)
{
    QByteArray bytes(bytesPerValue(format), 0);
    for (int i = 0; i < bytes.size(); ++i) {
        const size_t place = static_cast<size_t>(i);
        const int shift =
            format.order.empty() ? BYTE_BITS * i : BYTE_BITS * ('D' - format.order.at(place));
        bytes[format.order.empty() ? i : storedAt(i)] = static_cast<char>(raw >> shift & 0xFF);
    }
    return bytes;
}

std::string floatText(uint32_t raw)
{
    float number = 0;
    std::memcpy(&number, &raw, sizeof number);
    std::array<char, 32> text;
    const std::to_chars_result end = std::to_chars(text.begin(), text.end(), number);
    return std::string(text.begin(), end.ptr);
}

std::string hexNumber(uint32_t raw)
{
    std::array<char, 8> text;
    std::snprintf(text.data(), text.size(), "0x%04X", raw & 0xFFFF);
    return text.data();
}

std::string numberText(uint32_t raw, const Format &format)
{
    switch (format.type) {
    case Format::F32:
        return floatText(raw);
    case Format::HEX:
        return hexNumber(raw);
    case Format::S8:
        return std::to_string(static_cast<int8_t>(raw));
    case Format::S16:
        return std::to_string(static_cast<int16_t>(raw));
    case Format::S32:
        return std::to_string(static_cast<int32_t>(raw));
    default:
        return std::to_string(raw);
    }
}

uint32_t parseFloat(const std::string &text)
{
    double number = 0;
    const char *const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, number);
    if (result.ec == std::errc::invalid_argument || result.ptr != end || std::isnan(number))
        throw std::invalid_argument("\"" + text + "\" is not a number");
    if (hasLeadingZeros(text))
        throw std::invalid_argument("\"" + text + "\": write the number without leading zeros");
    if (result.ec != std::errc() || std::abs(number) >= FLOAT_OVERFLOW)
        throw std::invalid_argument("\"" + text
                                    + "\" is out of range: -3.4028235e38 to 3.4028235e38");
    const float narrow = static_cast<float>(number);
    uint32_t raw = 0;
    std::memcpy(&raw, &narrow, sizeof raw);
    return raw;
}

std::string rangeOf(const Format &format)
{
    if (format.type == Format::HEX)
        return "0x0000 to 0xFFFF";
    return rangeText(rowOf(format).lowest, rowOf(format).highest);
}

// `digits` are those of `text` without its "0x".
uint32_t parseHex(const std::string &text, const std::string &digits, const Format &format)
{
    const char *const end = digits.data() + digits.size();
    long long number = 0;
    const std::from_chars_result result = std::from_chars(digits.data(), end, number, 16);
    if (result.ec == std::errc::invalid_argument || result.ptr != end || digits[0] == '-')
        throw std::invalid_argument("\"" + text + "\" is not a whole number");
    if (result.ec != std::errc() || number < rowOf(format).lowest || number > rowOf(format).highest)
        throw std::invalid_argument("\"" + text + "\" is out of range: " + rangeOf(format));
    return static_cast<uint32_t>(number);
}

uint32_t parseWhole(const std::string &text, const Format &format)
{
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X'))
        return parseHex(text, text.substr(2), format);
    if (format.type == Format::HEX)
        return parseHex(text, text, format);
    return static_cast<uint32_t>(
        parseLongNumber(text, rowOf(format).lowest, rowOf(format).highest));
}

bool isPrintable(char character)
{
    return character >= ' ' && character <= '~' && character != '\\';
}

std::string charactersFrom(const QByteArray &bytes, const Format &format, int count,
                           bool inRegisters)
{
    std::string text;
    for (int i = 0; i < count; ++i) {
        const int place = inRegisters && format.order == "AB" ? storedAt(i) : i;
        const char character = static_cast<char>(byteOf(bytes, place));
        if (character == 0)
            break;
        std::array<char, 8> escape;
        std::snprintf(escape.data(), escape.size(), "\\x%02X",
                      static_cast<unsigned char>(character));
        text += isPrintable(character) ? std::string(1, character) : escape.data();
    }
    return text;
}

// Replaces the escapes by their characters.
std::string unescaped(const std::string &text)
{
    std::string characters;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            characters += text[i];
            continue;
        }
        unsigned code = 0;
        const std::string digits = text.substr(i, 2) == "\\x" ? text.substr(i + 2, 2) : "";
        const char *const end = digits.data() + digits.size();
        if (digits.size() != 2 || std::from_chars(digits.data(), end, code, 16).ptr != end)
            throw std::invalid_argument("\"" + text + "\": write a backslash as \\x5C");
        characters += static_cast<char>(code);
        i += 3;
    }
    return characters;
}

QByteArray charactersOf(const std::string &text, const Format &format, int count, bool inRegisters)
{
    const std::string characters = unescaped(text);
    if (characters.size() > static_cast<size_t>(count))
        throw std::invalid_argument("\"" + text + "\" is too long: it has "
                                    + std::to_string(characters.size()) + " characters; at most "
                                    + std::to_string(count) + " fit");
    QByteArray bytes(inRegisters ? (count + 1) / REGISTER_BYTES * REGISTER_BYTES : count, 0);
    for (size_t i = 0; i < characters.size(); ++i) {
        const int place = static_cast<int>(i);
        bytes[inRegisters && format.order == "AB" ? storedAt(place) : place] = characters[i];
    }
    return bytes;
}

std::vector<std::string> wordsOf(std::string text)
{
    std::replace(text.begin(), text.end(), ',', ' ');
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

} // namespace

Format parseFormat(const std::string &text)
{
    const size_t slash = text.find('/');
    const std::string name = text.substr(0, slash);
    const auto *const row = std::find_if(types.begin(), types.end(),
                                         [&](const TypeRow &type) { return name == type.name; });
    if (row == types.end())
        throw std::invalid_argument("format \"" + text
                                    + "\" is not one of: " + joined(typeNames()));
    Format format;
    format.type = static_cast<Format::Type>(row - types.begin());
    format.order = slash == std::string::npos ? defaultOrder(format.type) : text.substr(slash + 1);
    if (slash != std::string::npos && !isOrder(format.order, format.type))
        throw std::invalid_argument("format \"" + text
                                    + "\": the byte order is ABCD, CDAB, BADC or DCBA for 32-bit "
                                      "numbers, AB or BA for texts; other formats have none");
    return format;
}

std::string nameOf(const Format &format)
{
    const std::string name = rowOf(format).name;
    return format.order == defaultOrder(format.type) ? name : name + "/" + format.order;
}

int valueBits(const Format &format)
{
    return rowOf(format).bits;
}

bool fits(const Format &format, int unitBits)
{
    if (format.type == Format::TEXT)
        return unitBits == BYTE_BITS || unitBits == REGISTER_BITS;
    return rowOf(format).bits == unitBits
           || (rowOf(format).bits == DWORD_BITS && unitBits == REGISTER_BITS);
}

std::string textFrom(const QByteArray &bytes, const Format &format, int count, bool inRegisters)
{
    if (format.type == Format::TEXT)
        return charactersFrom(bytes, format, count, inRegisters);
    const int size = bytesPerValue(format);
    std::string text;
    for (int i = 0; i < count; ++i)
        text += (i == 0 ? "" : " ") + numberText(rawFrom(bytes, format, i * size), format);
    return text;
}

size_t charactersIn(const std::string &text)
{
    return unescaped(text).size();
}

QByteArray bytesFrom(const std::string &text, const Format &format, int count, bool inRegisters)
{
    if (format.type == Format::TEXT)
        return charactersOf(text, format, count, inRegisters);
    const std::vector<std::string> words = wordsOf(text);
    if (words.size() != static_cast<size_t>(count))
        throw std::invalid_argument("\"" + text
                                    + "\": values given: " + std::to_string(words.size())
                                    + ", expected: " + std::to_string(count));
    QByteArray bytes;
    for (const std::string &word : words)
        bytes += bytesOf(format.type == Format::F32 ? parseFloat(word) : parseWhole(word, format),
                         format);
    return bytes;
}

} // namespace velko
