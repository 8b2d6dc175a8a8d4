// A variable of a panel.
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
    int station = 1;
    int kind = KIND_HOLDING_WORD;
    std::string address; ///< see velko_modbus_rtu.h
    Format format;
    int count = 1; ///< values, or characters of a text
    Access access = Access::READ;

    bool isRead() const { return access != Access::WRITE; }
    bool isWritten() const { return access != Access::READ; }
};

/// Registers of one area, as counted in the area: without wireOffset.
struct RegisterSpan {
    int area; ///< AREA_...
    int first;
    int last;
};

/// Throws std::invalid_argument unless address, format, count and access fit the kind and every
/// register has an address on the line.
void checkVariable(const Variable &variable);

/// bit, u8, u16 or u32.
Format defaultFormat(int kind);

/// The length for the driver, as VAR_ITEM counts it.
int lengthOf(const Variable &variable);

RegisterSpan registersOf(const Variable &variable);

/// Parses "KIND:ADDRESS[:FORMAT[:COUNT]]", for example "7:100" or "holding-word:100:f32/ABCD:2".
/// The text becomes the variable's name. Throws std::invalid_argument.
Variable parseVariable(const std::string &text, int station, Access access);

/// For example "holding word 100".
std::string placeOf(const Variable &variable);

std::string textOf(const Variable &variable, const QByteArray &value);

/// Throws std::invalid_argument for a text that is not a value of the variable.
QByteArray valueOf(const Variable &variable, const std::string &text);

/// Identifies a queued write: the driver replaces it by a newer write to the same target.
struct WriteTarget {
    int station;
    int firstBit; ///< register address on the line x REGISTER_BITS + bit
    int bits;

    bool operator<(const WriteTarget &other) const;
};

/// One target for each piece into which the driver cuts a write.
std::vector<WriteTarget> targetsOf(const Variable &variable, int maxRegs);

/// The items of the variables that are read, for ReCreatReadVarList.
QList<VAR_ITEM> itemsOf(const std::vector<Variable> &variables);

} // namespace velko
