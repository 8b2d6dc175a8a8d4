// Polling a real device: the values of some variables, read for a while.
#pragma once

#include "host/serial_line.h"
#include "host/variable.h"

struct PollSettings {
    std::string library; ///< the driver's file
    LineSettings line;
    std::vector<Variable> variables;
    int station = 1;
    int maxRegs = 32;
    int retryLimit = 2;
    int seconds = 5;
};

/// Polls and prints the values, why others could not be read, and what the line did. True when every
/// variable was read and no request was given up. Throws std::runtime_error.
bool pollDevice(const PollSettings &settings);
