// How long bytes take on the simulated line.
#pragma once

#include <chrono>

namespace velko
{

/// Duration of one character of 11 bits: start bit, eight data bits, parity or a second stop bit,
/// stop bit. Baud rate 0: no time at all.
std::chrono::nanoseconds characterTime(int baudRate);

/// Silent interval between two frames (t3.5).
std::chrono::nanoseconds frameGap(int baudRate);

} // namespace velko
