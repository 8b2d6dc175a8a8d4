// The registers of the slaves: what they contain, and which of their bits belong to a variable.
#pragma once

#include "host/core/variables/variable.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace slave_side
{

using Clock = std::chrono::steady_clock;

const int WHOLE_REGISTER = 0xFFFF;

// Register addresses. The holding registers from FIRST_WRITABLE on can be written. From
// FIRST_READ_ONLY on, the holding registers and the input registers contain readOnlyValue().
const int FIRST_WRITABLE = 100;
const int FIRST_READ_ONLY = 140;
const int END_OF_REGISTERS = 156;

/// True for registers that refuse values above HIGHEST_LIMITED, with exception 3.
inline bool isLimited(int address)
{
    return address >= 120 && address < 124;
}
const int HIGHEST_LIMITED = 9000;

/// A clock that moves slowly. The read-only registers contain its last bits.
std::int64_t tickAt(Clock::time_point time);
const int TICK_BITS = 9;

/// Differs between all registers of all stations. `function`: 3 or 4.
int readOnlyValue(int station, int function, int address, std::int64_t tick);

/// The content of a register that can be written, before any write.
int initialValue(int station, int address);

/// Bits of one register, and their value.
struct Cell {
    int address;
    int mask;
    int value;
};

/// Returns the cells of the variable with the value `text`, in ascending order. Each register has
/// at most one of them.
std::vector<Cell> cellsOf(const velko::Variable &variable, const std::string &text);

} // namespace slave_side
