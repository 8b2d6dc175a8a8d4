// A variable: its registers, its values as text, its write targets.
#pragma once

#include "host/core/variables/formats.h"
#include "velko_modbus_rtu.h"

#include <QByteArray>
#include <QList>

#include <string>
#include <vector>

namespace velko
{

enum class Access { READ, WRITE, READ_WRITE };

struct Variable {
    std::string name;
    int station = 1;              ///< 1 to 247
    int kind = KIND_HOLDING_WORD; ///< one of KIND_...
    std::string address;          ///< as in VAR_ITEM::addrText
    Format format;
    int count = 1; ///< values, or characters of a text
    Access access = Access::READ;

    bool isRead() const { return access != Access::WRITE; }
    bool isWritten() const { return access != Access::READ; }
};

/// A range of registers of one area. Addresses count within the area, without wireOffset.
struct RegisterSpan {
    int area; ///< one of AREA_...
    int first;
    int last;
};

/// Throws std::invalid_argument with the reason if address, format, count or access do not fit the
/// kind, or if a register has no address on the line.
void checkVariable(const Variable &variable);

/// Returns bit, u8, u16 or u32, as wide as a unit of the kind.
Format defaultFormat(int kind);

/// Returns the length as VAR_ITEM counts it.
int lengthOf(const Variable &variable);

RegisterSpan registersOf(const Variable &variable);

/// Parses "KIND:ADDRESS[:FORMAT[:COUNT]]", for example "7:100" or "holding-word:100:f32/ABCD:2".
/// The text becomes the variable's name. Throws std::invalid_argument.
Variable parseVariable(const std::string &text, int station, Access access);

/// For example "holding word 100".
std::string placeOf(const Variable &variable);

/// Converts `value`, as GetRegisterData returns it, to text.
std::string textOf(const Variable &variable, const QByteArray &value);

/// Converts `text` to the bytes for SetRegisterData. Throws std::invalid_argument if the text is
/// not a value of the variable.
QByteArray valueOf(const Variable &variable, const std::string &text);

/// Identifies a queued write. The driver replaces a queued write by a newer one of the same target.
struct WriteTarget {
    int station;
    int firstBit; ///< register address on the line x REGISTER_BITS + bit
    int bits;

    bool operator<(const WriteTarget &other) const;
};

/// Returns one target for each request into which the driver cuts a write. `maxRegs` as in Link.
std::vector<WriteTarget> targetsOf(const Variable &variable, int maxRegs);

/// Returns the items for ReCreatReadVarList, without variables that are only written.
QList<VAR_ITEM> itemsOf(const std::vector<Variable> &variables);

} // namespace velko
