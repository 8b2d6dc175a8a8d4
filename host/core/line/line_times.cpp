#include "host/core/line/line_times.h"

#include <algorithm>

namespace velko
{

microseconds wallClockTime(Clock::time_point moment)
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<microseconds>(now - (Clock::now() - moment));
}

microseconds wireTime(const LineSettings &settings, int characters)
{
    const int bits = 9 + (settings.parity == 'N' ? 0 : 1) + settings.stopBits;
    return microseconds(1000000LL * bits * characters / settings.baudRate);
}

microseconds frameGap(const LineSettings &settings)
{
    const long long characters =
        settings.baudRate > 19200 ? 1750 : (38500000LL + settings.baudRate - 1) / settings.baudRate;
    return microseconds(std::max<long long>(characters, settings.minFrameGap));
}

int interCharacterTimeout(const LineSettings &settings)
{
    const auto twoCharacters = std::chrono::ceil<milliseconds>(wireTime(settings, 2)).count();
    return std::max(settings.interCharacterTimeout, static_cast<int>(twoCharacters));
}

int millisecondsUntil(Clock::time_point moment)
{
    const auto left = std::chrono::ceil<milliseconds>(moment - Clock::now()).count();
    return static_cast<int>(std::max<long long>(left, 0));
}

} // namespace velko
