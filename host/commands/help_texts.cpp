#include "host/commands/help_texts.h"

namespace velko
{

const char *const VARIABLES_HELP = R"(
A variable is KIND:ADDRESS[:FORMAT[:COUNT]], for example 7:100 or holding-word:100:f32/ABCD. Kinds:
               input  holding  holding-5000   ADDRESS
  bit            0       1          2         BYTE.BIT
  byte           3       4          5         byte; 2r and 2r + 1 are register r, 2r its low half
  word           6       7          8         register, counted from 0
  double-word    9      10         11         n: registers 2n and 2n + 1
"holding-5000" are the holding registers from 5000 on the line. Kinds can be named: input-bit.
Formats: bit; u8, s8; u16, s16, hex; u32, s32, f32 with an order of their bytes (ABCD, CDAB, BADC,
DCBA; CDAB unless said otherwise); text (/AB, /BA). 32-bit numbers may also begin at any word.
)";

const char *const EXIT_STATUS_HELP = R"(
Exit status: 0 good; 1 the driver's file or the output cannot be used; 2 wrong usage; 3 the file is
refused; 4 the port cannot be used; 5 a station did not answer, or no answer of it was whole;
6 an exception reply, or a value was refused.)";

} // namespace velko
