#include "host/core/variables/kinds.h"

#include "host/core/sizes/units.h"
#include "host/core/text/numbers.h"
#include "velko_modbus_rtu.h"

#include <algorithm>
#include <stdexcept>

namespace velko
{

namespace
{

const int AREAS = 3;
const int HOLDING_5000_OFFSET = 5000;

} // namespace

Width widthOf(int kind)
{
    return static_cast<Width>(kind / AREAS);
}

int areaOf(int kind)
{
    return AREA_INPUT + kind % AREAS;
}

int wireOffset(int area)
{
    return area == AREA_HOLDING_5000 ? HOLDING_5000_OFFSET : 0;
}

int unitBits(int kind)
{
    static const int bits[] = {1, BYTE_BITS, REGISTER_BITS, DWORD_BITS};
    return bits[widthOf(kind)];
}

std::string kindName(int kind)
{
    static const char *const areas[AREAS] = {"input", "holding", "holding 5000"};
    static const char *const widths[] = {"bit", "byte", "word", "double word"};
    return std::string(areas[kind % AREAS]) + " " + widths[widthOf(kind)];
}

int parseKind(const std::string &text)
{
    if (isDigits(text))
        return parseNumber(text, 0, KIND_COUNT - 1, "kind");
    std::string name = text;
    std::replace(name.begin(), name.end(), '-', ' ');
    for (int kind = 0; kind < KIND_COUNT; ++kind)
        if (name == kindName(kind))
            return kind;
    throw std::invalid_argument("kind \"" + text + "\" is neither a number from 0 to "
                                + std::to_string(KIND_COUNT - 1)
                                + " nor input, holding or holding 5000 followed by bit, byte, word "
                                  "or double word");
}

bool isWritable(int kind)
{
    return areaOf(kind) != AREA_INPUT;
}

} // namespace velko
