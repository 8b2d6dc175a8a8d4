// A variable of the panel, as a person names it.
#pragma once

#include "velko_modbus_rtu.h"

#include <string>
#include <vector>

struct Variable {
    int kind;            ///< KIND_...
    std::string address; ///< see velko_modbus_rtu.h
    int length;          ///< in the kind's units
};

/// "KIND:ADDRESS" or "KIND:ADDRESS:LENGTH", for example "7:100:2". Throws std::invalid_argument
/// that says what is wrong with the text.
Variable parseVariable(const std::string &text);

/// "holding word" and so on.
std::string kindName(int kind);

bool isWritable(int kind);

/// The items that keep the variables up to date.
QList<VAR_ITEM> itemsOf(const std::vector<Variable> &variables);

/// "12 34 AB"
std::string hexOf(const QByteArray &bytes);
