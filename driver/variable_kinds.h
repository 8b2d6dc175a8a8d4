// What a variable kind says: its width, its register area and that area's offset on the line.
#pragma once

enum WidthClass { WIDTH_NONE = -1, WIDTH_BIT = 0, WIDTH_BYTE, WIDTH_WORD, WIDTH_DWORD };

/// Width of a kind; WIDTH_NONE outside 0 to 11.
WidthClass widthOf(int kind);

/// Area code of a kind; a value outside 0 to 11 is returned unchanged.
int getPlcReg(int kind);

/// Registers to add on the line: 5000 for 2, 5, 8 and 11, else 0. Area code 8 and the kinds of its
/// area are the same set of numbers, so one rule serves read records and write records.
int getPlcAdd(int areaOrKind);
