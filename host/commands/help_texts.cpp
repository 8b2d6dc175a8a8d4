#include "host/commands/help_texts.h"

#include "host/core/sizes/limits.h"

namespace velko
{

std::string variablesHelp()
{
    return R"(A variable is KIND:ADDRESS[:FORMAT[:COUNT]], for example 7:100 or holding-word:100:f32/ABCD.
KIND         input  holding  holding-5000   ADDRESS
bit            0       1          2         BYTE.BIT
byte           3       4          5         byte; bytes 2r and 2r + 1 are register r, low byte first
word           6       7          8         register address, counted from 0
double-word    9      10         11         n: registers 2n and 2n + 1
KIND is a number or a name, for example input-bit. "holding-5000" are the holding registers from
address 5000 on.
FORMAT: bit; u8, s8; u16, s16, hex; u32, s32, f32 with a byte order (/ABCD, /CDAB, /BADC, /DCBA;
default: /CDAB); text with a byte order (/AB, /BA; default: /AB). Words hold 32-bit formats as well.
COUNT: number of values, or of characters of a text, 1 to )"
           + std::to_string(HIGHEST_COUNT) + " (default: 1)\n";
}

std::string exitStatusHelp()
{
    return R"(
Exit status:
  0  success
  1  the driver library file, the output or the system failed
  2  wrong usage
  3  error in the file of links and variables
  4  the port cannot be used
  5  a station did not respond, or its responses were damaged
  6  a station sent an exception response, or a value was refused)";
}

} // namespace velko
