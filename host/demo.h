// The driver at work on a simulated PLC: every width in every area is polled, written, read back
// and compared with what the PLC holds.
#pragma once

#include <QString>

#include <string>

struct DemoSettings {
    std::string library; ///< the driver's file
    QString peer;        ///< an independent master to compare with; empty: none
    int maxRegs = 32;
};

/// Runs the demo and prints what it does. True when every value agrees. Throws std::runtime_error.
bool runDemo(const DemoSettings &settings);
