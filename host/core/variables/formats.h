// How the bytes of a variable become a text for people, and a text bytes: one conversion for both.
#pragma once

#include <QByteArray>

#include <string>

namespace velko
{

struct Format {
    enum Type { BIT, U8, S8, U16, S16, HEX, U32, S32, F32, TEXT };

    Type type = U16;
    /// Of 32-bit numbers: the bytes in the order in which they travel, A being the highest. Of texts
    /// in registers: AB where the first character is a register's high byte, BA where it is the low.
    std::string order;
};

/// "u16", "f32", "f32/ABCD", "text/BA" and so on. Without an order 32-bit numbers are CDAB, the
/// lower register holding the low half, and texts AB. Throws std::invalid_argument.
Format parseFormat(const std::string &text);

/// As parseFormat reads it.
std::string nameOf(const Format &format);

/// Bits of one value; of one character of a text.
int valueBits(const Format &format);

/// True where a kind of units of `unitBits` bits can hold the format.
bool fits(const Format &format, int unitBits);

/// `bytes` as GetRegisterData delivers them, `count` values or characters; missing bytes count as 0.
/// `inRegisters`: the kind's units are words; the characters of a text in bytes are in their order.
/// Several values are separated by a space. A text ends at its first 0; what cannot be printed
/// stands as \xNN.
std::string textFrom(const QByteArray &bytes, const Format &format, int count, bool inRegisters);

/// Characters of a text, an escape being one. Throws std::invalid_argument.
size_t charactersIn(const std::string &text);

/// The bytes for SetRegisterData. A text may be shorter than its characters: it is filled with 0.
/// Throws std::invalid_argument that says what is wrong with the text, with the range where it is out
/// of it.
QByteArray bytesFrom(const std::string &text, const Format &format, int count, bool inRegisters);

} // namespace velko
