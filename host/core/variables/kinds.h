// The twelve kinds of variables and their names.
#pragma once

#include <string>

namespace velko
{

enum Width { WIDTH_BIT, WIDTH_BYTE, WIDTH_WORD, WIDTH_DWORD };

Width widthOf(int kind);

/// AREA_...
int areaOf(int kind);

/// Difference between a register address on the line and in the area: 5000 for AREA_HOLDING_5000.
int wireOffset(int area);

/// Bits of one unit: 1, 8, 16 or 32.
int unitBits(int kind);

/// For example "holding word".
std::string kindName(int kind);

/// Parses a name ("-" may replace a space) or a number from 0 to 11. Throws std::invalid_argument.
int parseKind(const std::string &text);

/// False for the input area.
bool isWritable(int kind);

} // namespace velko
