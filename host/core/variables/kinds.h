// The twelve kinds of variables, as people name them.
#pragma once

#include "velko_modbus_rtu.h"

#include <string>

namespace velko
{

enum Width { WIDTH_BIT, WIDTH_BYTE, WIDTH_WORD, WIDTH_DWORD };

Width widthOf(int kind);

/// AREA_...
int areaOf(int kind);

/// What is added to a register of the area to have its number on the line.
int wireOffset(int area);

/// Bits of one unit: 1, 8, 16 or 32.
int unitBits(int kind);

/// "holding word" and so on.
std::string kindName(int kind);

/// From a name ("-" stands for a space as well) or the number 0 to 11. Throws std::invalid_argument.
int parseKind(const std::string &text);

/// The input area cannot be written.
bool isWritable(int kind);

} // namespace velko
