// A variable of the panel, as a person names it.
#pragma once

#include "velko_modbus_rtu.h"

#include <cstdint>
#include <string>
#include <vector>

struct Variable {
    int kind;            ///< KIND_...
    std::string address; ///< see velko_modbus_rtu.h
    int length;          ///< in the kind's units
};

/// Registers of one area, before the 5000 of the third area is added.
struct RegisterSpan {
    int area; ///< AREA_...
    int first;
    int last;
};

/// One bit, byte, word or double word of a variable.
struct Unit {
    std::string address;
    std::string value; ///< a bit in decimal, all others in hexadecimal
};

/// "KIND:ADDRESS" or "KIND:ADDRESS:LENGTH", for example "7:100:2". Throws std::invalid_argument that
/// says what is wrong with the text: among others, a register that has no number on the line.
Variable parseVariable(const std::string &text);

RegisterSpan registersOf(const Variable &variable);

/// The number in the first `count` bytes of a value, 4 at the most, lowest byte first.
uint32_t numberIn(const QByteArray &value, int count);

/// The units of a variable with their values, as GetRegisterData delivers them.
std::vector<Unit> unitsOf(const Variable &variable, const QByteArray &value);

/// "holding word" and so on.
std::string kindName(int kind);

bool isWritable(int kind);

/// The items that keep the variables up to date.
QList<VAR_ITEM> itemsOf(const std::vector<Variable> &variables);
