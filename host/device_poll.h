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

/// Polls and prints the values and what the line did. True when every variable was read at least
/// once and no request was given up. Throws std::runtime_error.
bool pollDevice(const PollSettings &settings);
