#include "host/plc/station_memory.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace velko
{

namespace
{

using std::chrono::milliseconds;

const int INPUT_REGISTERS = 1000;
const int HOLDING_REGISTERS = 6000;

const int64_t TRIANGLE_PERIOD = 20000; // ms
const int64_t WAVE_PERIOD = 10000;     // ms
const double WAVE_HEIGHT = 100;

const milliseconds STATION_OFFSET(2000);

std::vector<uint16_t> filled(int size, int first, int step)
{
    std::vector<uint16_t> registers;
    registers.reserve(static_cast<size_t>(size));
    for (int i = 0; i < size; ++i)
        registers.push_back(static_cast<uint16_t>(first + step * i));
    return registers;
}

} // namespace

StationMemory::StationMemory(int position)
    : m_position(position),
      m_input(filled(INPUT_REGISTERS, 0x1234 + 0x0101 * position, 0x0B07)),
      m_holding(filled(HOLDING_REGISTERS, 0x5AA5 + 0x0101 * position, 0x1D03))
{
}

void StationMemory::move(milliseconds elapsed)
{
    const int64_t time = (elapsed + STATION_OFFSET * m_position).count();
    const int64_t inTriangle = time % TRIANGLE_PERIOD;
    const double angle = 2 * M_PI * static_cast<double>(time % WAVE_PERIOD) / WAVE_PERIOD;
    const float wave = static_cast<float>(WAVE_HEIGHT * std::sin(angle));
    uint32_t bits = 0;
    static_assert(sizeof bits == sizeof wave, "the wave takes two registers");
    std::memcpy(&bits, &wave, sizeof bits);
    m_input[0] = static_cast<uint16_t>(time / 100);
    m_input[1] = static_cast<uint16_t>(std::min(inTriangle, TRIANGLE_PERIOD - inTriangle) / 10);
    m_input[2] = static_cast<uint16_t>(bits);
    m_input[3] = static_cast<uint16_t>(bits >> 16);
    m_input[4] = static_cast<uint16_t>(time / 1000);
}

std::string registerMap()
{
    const std::string lastInput = std::to_string(INPUT_REGISTERS - 1);
    const std::string lastHolding = std::to_string(HOLDING_REGISTERS - 1);
    return R"(Registers of each station, by register address (0-based):
  input    0          tenths of a second since the start
  input    1          triangle wave from 0 to 1000, period 20 s
  input    2 and 3    sine wave from -100 to 100, period 10 s: 32-bit float, low word in 2
  input    4          seconds since the start
  input    5 to )"
           + lastInput + R"(   constant values
  holding  0 to )"
           + lastHolding + R"(  constant values until they are written
The clock of each further station is 2 s ahead of the previous station.
)";
}

} // namespace velko
