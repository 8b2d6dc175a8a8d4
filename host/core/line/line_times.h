// Times on a serial line.
#pragma once

#include "host/core/line/clock.h"
#include "host/core/line/line_settings.h"

#include <chrono>

namespace velko
{

using std::chrono::microseconds;
using std::chrono::milliseconds;

/// Returns the wall-clock time of a moment. Microseconds since 1970.
microseconds wallClockTime(Clock::time_point moment);

/// Returns the transmission time of `characters` characters, each with a start bit, 8 data bits,
/// parity and stop bits.
microseconds wireTime(const LineSettings &settings, int characters);

/// Returns the frame gap (t3.5): 3.5 characters of 11 bits, or 1.750 ms above 19,200 baud;
/// minFrameGap if that is longer.
microseconds frameGap(const LineSettings &settings);

/// Returns the inter-character timeout in milliseconds: the setting, or two characters if they take
/// longer.
int interCharacterTimeout(const LineSettings &settings);

/// Milliseconds from now, rounded up; 0 if the moment has passed.
int millisecondsUntil(Clock::time_point moment);

} // namespace velko
