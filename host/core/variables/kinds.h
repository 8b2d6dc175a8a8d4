// The twelve kinds of variables and their names.
#pragma once

#include <string>

namespace velko
{

enum Width { WIDTH_BIT, WIDTH_BYTE, WIDTH_WORD, WIDTH_DWORD };

Width widthOf(int kind);

/// Returns one of AREA_...
int areaOf(int kind);

/// Returns the number to add to a register address in the area for the address on the line: 5000
/// for AREA_HOLDING_5000, otherwise 0.
int wireOffset(int area);

/// Bits of one unit: 1, 8, 16 or 32.
int unitBits(int kind);

/// For example "holding word".
std::string kindName(int kind);

/// Parses a name ("-" may replace a space) or a number from 0 to 11. Throws std::invalid_argument.
int parseKind(const std::string &text);

/// False for the kinds of the input area.
bool isWritable(int kind);

} // namespace velko
