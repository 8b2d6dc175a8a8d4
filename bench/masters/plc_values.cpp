#include "bench/masters/plc_values.h"

#include <stdexcept>
#include <string>

namespace
{

const int FIRST_OF_5000 = 5000;
const int MOVING_INPUTS = 5;

// The initial value of a register of the simulated PLC, computed here independently: comparing only
// the values that two masters read would not show that both read the wrong register.
uint16_t plcValue(bool isInput, int number)
{
    return static_cast<uint16_t>(isInput ? 0x1234 + 0x0B07 * number : 0x5AA5 + 0x1D03 * number);
}

} // namespace

Place placeOf(const VAR_ITEM &item)
{
    if (item.kind < KIND_INPUT_WORD || item.kind >= KIND_COUNT)
        throw std::invalid_argument("a variable of kind " + std::to_string(item.kind)
                                    + " is neither a word nor a double word");
    const bool isDouble = item.kind >= KIND_INPUT_DWORD;
    const int area = AREA_INPUT + item.kind % 3;
    const int first = item.addrText.toInt() * (isDouble ? 2 : 1);
    return {area == AREA_INPUT, first + (area == AREA_HOLDING_5000 ? FIRST_OF_5000 : 0),
            isDouble ? item.length + item.length % 2 : item.length};
}

std::vector<uint16_t> plcValues(const std::vector<Place> &places)
{
    std::vector<uint16_t> values;
    for (const Place &place : places) {
        if (place.isInput && place.first < MOVING_INPUTS)
            throw std::invalid_argument("input register " + std::to_string(place.first)
                                        + " of the simulated PLC changes by itself");
        for (int i = 0; i < place.count; ++i)
            values.push_back(plcValue(place.isInput, place.first + i));
    }
    return values;
}
