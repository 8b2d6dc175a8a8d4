// Which device is behind a line just now.
#pragma once

#include <string>
#include <vector>

namespace velko
{

/// What an adapter says of itself; all empty where it says nothing (a UART on the board, a
/// pseudo-terminal).
struct AdapterIdentity {
    std::string serialNumber;
    int vendor = 0;
    int product = 0;
};

/// Of a device that is there.
AdapterIdentity identityOf(const std::string &device);

/// The first name or pattern ("/dev/ttyUSB*") that leads to something. Where none does, the device
/// that the adapter `lastSeen` is known by now: unplugged and plugged in again, it may have another
/// number. Empty when there is none. Symbolic links are followed anew at each call.
std::string findPort(const std::vector<std::string> &devices, const AdapterIdentity &lastSeen);

} // namespace velko
