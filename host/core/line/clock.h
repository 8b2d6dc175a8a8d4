// The host's clock: steady, and replaceable, so that a test of silence need not wait for it.
#pragma once

#include <chrono>

namespace velko
{

/// Passes as the steady clock of the system does, unless a ReplacedTime exists on the thread.
class Clock
{
public:
    using duration = std::chrono::steady_clock::duration;
    using rep = std::chrono::steady_clock::rep;
    using period = std::chrono::steady_clock::period;
    using time_point = std::chrono::steady_clock::time_point;

    static time_point now();
    static void sleepUntil(time_point moment);
};

/// A time that passes only while somebody sleeps. While the object exists, it is the time of the
/// thread that constructed it. At most one at a time on a thread.
class ReplacedTime
{
public:
    ReplacedTime();
    ~ReplacedTime();
    ReplacedTime(const ReplacedTime &) = delete;
    ReplacedTime &operator=(const ReplacedTime &) = delete;

private:
    friend class Clock;

    Clock::time_point m_now;
};

} // namespace velko
