// Times on a serial line.
#pragma once

#include "host/core/line/line_settings.h"

#include <chrono>

namespace velko
{

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::milliseconds;

/// Transmission time of characters with start bit, 8 data bits, parity and stop bits.
microseconds wireTime(const LineSettings &settings, int characters);

/// The frame gap (t3.5): 3.5 characters of 11 bits, 1.750 ms above 19,200 baud, or minFrameGap if
/// that is longer.
microseconds frameGap(const LineSettings &settings);

/// The inter-character timeout in milliseconds: at least two characters.
int interCharacterTimeout(const LineSettings &settings);

/// Milliseconds from now, rounded up; 0 if the moment has passed.
int millisecondsUntil(Clock::time_point moment);

} // namespace velko
