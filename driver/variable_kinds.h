// The properties of a variable kind: its width, its area and the area's offset on the line.
#pragma once

enum WidthClass { WIDTH_NONE = -1, WIDTH_BIT = 0, WIDTH_BYTE, WIDTH_WORD, WIDTH_DWORD };

/// Returns the width of a kind, or WIDTH_NONE for a value outside 0 to 11.
WidthClass widthOf(int kind);

/// Returns the area code of a kind. A value outside 0 to 11 is returned unchanged.
int getPlcReg(int kind);

/// Returns the number to add to a register address on the line: 5000 for 2, 5, 8 and 11, otherwise
/// 0. One rule serves the area codes of read records and the kinds of write records, because area
/// code 8 is also the number of a kind of that area.
int getPlcAdd(int areaOrKind);
