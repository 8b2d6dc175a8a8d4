// Transmission times on the simulated line.
#pragma once

#include <chrono>

namespace velko
{

/// Returns the time of one character of 11 bits: start bit, 8 data bits, parity or a second stop
/// bit, stop bit. Baud rate 0: no time.
std::chrono::nanoseconds characterTime(int baudRate);

/// Returns the silent interval between two frames (t3.5).
std::chrono::nanoseconds frameGap(int baudRate);

} // namespace velko
