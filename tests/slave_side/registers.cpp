#include "tests/slave_side/registers.h"

#include <algorithm>
#include <sstream>

namespace slave_side
{

std::int64_t tickAt(Clock::time_point time)
{
    return time.time_since_epoch() / std::chrono::milliseconds(50);
}

int readOnlyValue(int station, int function, int address, std::int64_t tick)
{
    const int area = 2 * station + (function == 4 ? 1 : 0);
    const int identity = area * (END_OF_REGISTERS - FIRST_READ_ONLY) + address - FIRST_READ_ONLY;
    return identity << TICK_BITS | static_cast<int>(tick & ((1 << TICK_BITS) - 1));
}

int initialValue(int station, int address)
{
    return (0xA500 + 0x1111 * station + 0x0B07 * address) & WHOLE_REGISTER;
}

// The host's own conversion is not used: it may be wrong.
std::vector<Cell> cellsOf(const velko::Variable &variable, const std::string &text)
{
    static const int unitBits[] = {1, 8, 16, 32};
    const int bits = unitBits[variable.kind / 3];
    const size_t dot = variable.address.find('.');
    int bit = std::stoi(variable.address) * (bits == 1 ? 8 : bits);
    if (dot != std::string::npos)
        bit += std::stoi(variable.address.substr(dot + 1));
    std::vector<Cell> cells;
    std::istringstream values(text);
    for (std::int64_t value = 0; values >> value; bit += bits) {
        for (int part = 0; part < bits; part += 16) {
            const int mask = (1 << std::min(bits, 16)) - 1;
            const int shift = bit % 16;
            cells.push_back({(bit + part) / 16, mask << shift,
                             static_cast<int>(value >> part & mask) << shift});
        }
    }
    return cells;
}

} // namespace slave_side
