#include "host/plc/line_pace.h"

namespace velko
{

namespace
{

const int BITS_PER_CHARACTER = 11;

} // namespace

std::chrono::nanoseconds characterTime(int baudRate)
{
    using std::chrono::nanoseconds;
    const nanoseconds second = std::chrono::seconds(1);
    return baudRate > 0 ? second * BITS_PER_CHARACTER / baudRate : nanoseconds(0);
}

std::chrono::nanoseconds frameGap(int baudRate)
{
    return characterTime(baudRate) * 7 / 2;
}

} // namespace velko
