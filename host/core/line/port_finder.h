// Finds the device of a line.
#pragma once

#include <string>
#include <vector>

namespace velko
{

/// Identifies an adapter; empty for a port without identification (an on-board UART, a
/// pseudo-terminal).
struct AdapterIdentity {
    std::string serialNumber;
    int vendor = 0;
    int product = 0;
};

/// `device` exists.
AdapterIdentity identityOf(const std::string &device);

/// Returns the device of the first name or pattern ("/dev/ttyUSB*") that exists. If none exists,
/// returns the present device of the adapter `lastSeen`, which may have another number after it was
/// unplugged. Empty if there is neither. Each call follows symbolic links again.
std::string findPort(const std::vector<std::string> &devices, const AdapterIdentity &lastSeen);

} // namespace velko
