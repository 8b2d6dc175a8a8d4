// Converts the bytes of a variable to text and back.
#pragma once

#include <QByteArray>

#include <cstddef>
#include <string>

namespace velko
{

struct Format {
    enum Type { BIT, U8, S8, U16, S16, HEX, U32, S32, F32, TEXT };

    Type type = U16;
    /// Byte order. For 32-bit numbers: the order of the bytes on the line, where A is the most
    /// significant byte. For texts in registers: AB if the first character is the high byte of a
    /// register, BA if it is the low byte. Empty for other formats.
    std::string order;
};

/// Parses "u16", "f32", "f32/ABCD", "text/BA" and so on. The default order is CDAB for 32-bit
/// numbers (the low word in the lower register) and AB for texts. Throws std::invalid_argument.
Format parseFormat(const std::string &text);

/// Returns the text from which parseFormat makes this format.
std::string nameOf(const Format &format);

/// Bits of one value, or of one character of a text.
int valueBits(const Format &format);

/// True if a variable whose units have `unitBits` bits can have the format.
bool fits(const Format &format, int unitBits);

/// Converts `count` values or characters. `bytes` are laid out as GetRegisterData delivers them;
/// missing bytes count as 0. `inRegisters`: the units of the kind are words, so the byte order of a
/// text applies. A space separates values. A text ends at its first 0; a character that cannot be
/// printed becomes \xNN.
std::string textFrom(const QByteArray &bytes, const Format &format, int count, bool inRegisters);

/// Number of characters of a text; an escape counts as one. Throws std::invalid_argument.
size_t charactersIn(const std::string &text);

/// Converts to the bytes for SetRegisterData. A text with fewer than `count` characters is filled
/// with 0. Throws std::invalid_argument with the reason, and with the range if a value is out of
/// it.
QByteArray bytesFrom(const std::string &text, const Format &format, int count, bool inRegisters);

} // namespace velko
