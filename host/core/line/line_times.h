// How long things take on a serial line.
#pragma once

#include "host/core/line/line_settings.h"

#include <chrono>

namespace velko
{

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;
using std::chrono::milliseconds;

/// So many characters on the wire: start bit, 8 data bits, parity and stop bits.
microseconds wireTime(const LineSettings &settings, int characters);

/// The silence that separates frames: 3.5 characters of 11 bits, 1.750 ms above 19,200 baud, or the
/// settings' floor where that is more.
microseconds silenceTime(const LineSettings &settings);

/// Milliseconds after which no further byte of a frame is waited for: never less than two characters.
int byteTimeout(const LineSettings &settings);

/// Milliseconds from now, rounded up; 0 for a moment that has passed.
int millisecondsUntil(Clock::time_point moment);

} // namespace velko
