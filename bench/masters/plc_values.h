// Where variables stand in the simulated PLC, and what it holds there.
#pragma once

#include "velko_modbus_rtu.h"

#include <cstdint>
#include <vector>

/// The only station that is asked.
const int STATION = 1;

/// A variable as a request names it.
struct Place {
    bool isInput; ///< function 04; else 03
    int first;    ///< register on the line
    int count;    ///< registers
};

/// Words and double words alone; throws std::invalid_argument for other kinds.
Place placeOf(const VAR_ITEM &item);

/// The registers of all places, in their order, as the PLC holds them from its start on. The input
/// registers that it moves (0 to 4) throw std::invalid_argument.
std::vector<uint16_t> plcValues(const std::vector<Place> &places);
