#include "host/views/keys.h"

#include <algorithm>
#include <map>
#include <optional>

namespace velko
{

namespace
{

const size_t LONGEST_KEY = 32; // bytes
const char ESC = '\x1b';
const char *const NO_CHARACTER = "\xef\xbf\xbd"; // for bytes that are not UTF-8

// The bytes between "ESC [" or "ESC O" and a modifier, and the last one.
std::optional<Key::Kind> kindOfSequence(const std::string &parameters, char last)
{
    static const std::map<std::string, Key::Kind> keys = {
        {"A", Key::UP},       {"B", Key::DOWN},      {"H", Key::HOME}, {"F", Key::END},
        {"1~", Key::HOME},    {"7~", Key::HOME},     {"4~", Key::END}, {"8~", Key::END},
        {"5~", Key::PAGE_UP}, {"6~", Key::PAGE_DOWN}};
    const std::string number = last == '~' ? parameters.substr(0, parameters.find(';')) : "";
    const auto place = keys.find(number + last);
    if (place == keys.end())
        return std::nullopt;
    return place->second;
}

std::optional<Key::Kind> kindOfControl(char byte)
{
    switch (byte) {
    case '\r':
    case '\n':
        return Key::ENTER;
    case '\b':
    case '\x7f':
        return Key::BACKSPACE;
    case 'U' - '@':
        return Key::CLEAR_LINE;
    case 'D' - '@':
        return Key::END_OF_INPUT;
    case 'L' - '@':
        return Key::REDRAW;
    default:
        return std::nullopt;
    }
}

// The number of bytes of the UTF-8 character that begins with this byte, 0 if none does.
size_t lengthOfCharacter(char first)
{
    const auto byte = static_cast<unsigned char>(first);
    if (byte < 0x80)
        return 1;
    if (byte >= 0xc2 && byte < 0xe0)
        return 2;
    if (byte >= 0xe0 && byte < 0xf0)
        return 3;
    return byte >= 0xf0 && byte < 0xf5 ? 4 : 0;
}

bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
}

// The next functions return the number of bytes of the key, 0 if it is not complete.

size_t readSequence(const std::string &bytes, std::vector<Key> &keys)
{
    if (bytes.size() < 3)
        return 0;
    if (bytes[2] == '[') // a function key of the Linux console: one byte follows
        return bytes.size() < 4 ? 0 : 4;
    const auto isLast = [](char byte) { return byte >= '@' && byte <= '~'; };
    const auto last = std::find_if(bytes.begin() + 2, bytes.end(), isLast);
    if (last == bytes.end())
        return bytes.size() < LONGEST_KEY ? 0 : bytes.size();
    if (const auto kind = kindOfSequence(std::string(bytes.begin() + 2, last), *last))
        keys.push_back({*kind, {}});
    return static_cast<size_t>(last - bytes.begin()) + 1;
}

size_t readEscape(const std::string &bytes, std::vector<Key> &keys)
{
    if (bytes.size() < 2)
        return 0;
    if (bytes[1] == '[' || bytes[1] == 'O')
        return readSequence(bytes, keys);
    keys.push_back({Key::ESCAPE, {}});
    return 1;
}

size_t readCharacter(const std::string &bytes, std::vector<Key> &keys)
{
    const size_t length = lengthOfCharacter(bytes[0]);
    size_t good = 1;
    while (good < std::min(length, bytes.size()) && isContinuation(bytes[good]))
        ++good;
    if (good == length) {
        keys.push_back({Key::CHARACTER, bytes.substr(0, length)});
        return length;
    }
    if (length > 0 && good == bytes.size())
        return 0;
    keys.push_back({Key::CHARACTER, NO_CHARACTER});
    return good;
}

size_t readKey(const std::string &bytes, std::vector<Key> &keys)
{
    if (bytes[0] == ESC)
        return readEscape(bytes, keys);
    const auto byte = static_cast<unsigned char>(bytes[0]);
    if (byte >= ' ' && byte != 0x7f)
        return readCharacter(bytes, keys);
    if (const auto kind = kindOfControl(bytes[0]))
        keys.push_back({*kind, {}});
    return 1;
}

} // namespace

std::vector<Key> KeyReader::read(const std::string &bytes)
{
    m_bytes += bytes;
    std::vector<Key> keys;
    size_t begin = 0;
    while (begin < m_bytes.size()) {
        const size_t length = readKey(m_bytes.substr(begin, LONGEST_KEY), keys);
        if (length == 0)
            break;
        begin += length;
    }
    m_bytes.erase(0, begin);
    return keys;
}

std::vector<Key> KeyReader::settle()
{
    std::vector<Key> keys;
    if (m_bytes == std::string(1, ESC))
        keys.push_back({Key::ESCAPE, {}});
    m_bytes.clear();
    return keys;
}

} // namespace velko
