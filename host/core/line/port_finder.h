// Finds the device of a line.
#pragma once

#include <string>
#include <vector>

namespace velko
{

/// Identifies a USB adapter. `serialNumber` is empty for a port without one, for example an
/// on-board UART or a pseudo-terminal.
struct AdapterIdentity {
    std::string serialNumber;
    int vendor = 0;
    int product = 0;
};

/// Returns an empty identity if `device` has none.
AdapterIdentity identityOf(const std::string &device);

/// Returns the device of the first name or pattern ("/dev/ttyUSB*") that exists. If none exists,
/// returns the present device of the adapter `lastSeen`, because an adapter may get another number
/// when it is plugged in again. Returns an empty text if there is neither. Symbolic links are
/// followed.
std::string findPort(const std::vector<std::string> &devices, const AdapterIdentity &lastSeen);

} // namespace velko
