// The registers of variables in the simulated PLC, and their values.
#pragma once

#include "velko_modbus_rtu.h"

#include <cstdint>
#include <vector>

/// The only station that is polled.
const int STATION = 1;

/// The registers of a variable, as a request addresses them.
struct Place {
    bool isInput; ///< function 04; otherwise 03
    int first;    ///< register address
    int count;    ///< number of registers
};

/// Accepts only words and double words; throws std::invalid_argument for other kinds.
Place placeOf(const VAR_ITEM &item);

/// Returns the initial values of all places in the PLC, in order. Throws std::invalid_argument for
/// the input registers that the PLC changes by itself (0 to 4).
std::vector<uint16_t> plcValues(const std::vector<Place> &places);
