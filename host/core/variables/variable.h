// A variable of the panel, as a person describes it.
#pragma once

#include "host/core/variables/formats.h"
#include "host/core/variables/kinds.h"

#include <vector>

namespace velko
{

enum class Access { READ, WRITE, READ_WRITE };

struct Variable {
    std::string name;
    int station = 1;
    int kind = KIND_HOLDING_WORD;
    std::string address; ///< see velko_modbus_rtu.h
    Format format;
    int count = 1; ///< values, or characters of a text
    Access access = Access::READ;

    bool isRead() const { return access != Access::WRITE; }
    bool isWritten() const { return access != Access::READ; }
};

/// Registers of one area, before the 5000 of the third area is added.
struct RegisterSpan {
    int area; ///< AREA_...
    int first;
    int last;
};

/// Throws std::invalid_argument unless address, format, count and access fit the kind and every
/// register has a number on the line.
void checkVariable(const Variable &variable);

/// What a kind's values are unless said otherwise: bit, u8, u16 or u32.
Format defaultFormat(int kind);

/// The length for the driver, in the kind's units.
int lengthOf(const Variable &variable);

RegisterSpan registersOf(const Variable &variable);

/// "KIND:ADDRESS[:FORMAT[:COUNT]]", for example "7:100", "holding-word:100:f32/ABCD:2". Throws
/// std::invalid_argument. The text becomes the variable's name.
Variable parseVariable(const std::string &text, int station, Access access);

/// "holding word 100"
std::string placeOf(const Variable &variable);

std::string textOf(const Variable &variable, const QByteArray &value);

/// Throws std::invalid_argument for a text that is no value of the variable.
QByteArray valueOf(const Variable &variable, const std::string &text);

/// What a queued write of the variable is told by: the driver lets a newer write to the same target
/// take an older one's place.
struct WriteTarget {
    int station;
    int firstBit; ///< register on the line x REGISTER_BITS + bit
    int bits;

    bool operator<(const WriteTarget &other) const;
};

/// One for each piece that the driver cuts the write into.
std::vector<WriteTarget> targetsOf(const Variable &variable, int maxRegs);

/// The items that keep those of the variables up to date that are read.
QList<VAR_ITEM> itemsOf(const std::vector<Variable> &variables);

} // namespace velko
