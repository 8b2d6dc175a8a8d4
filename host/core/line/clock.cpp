#include "host/core/line/clock.h"

#include <algorithm>
#include <thread>

namespace velko
{

namespace
{

thread_local ReplacedTime *replacement = nullptr;

} // namespace

Clock::time_point Clock::now()
{
    return replacement ? replacement->m_now : std::chrono::steady_clock::now();
}

void Clock::sleepUntil(time_point moment)
{
    if (replacement)
        replacement->m_now = std::max(replacement->m_now, moment);
    else
        std::this_thread::sleep_until(moment);
}

ReplacedTime::ReplacedTime() : m_now(std::chrono::steady_clock::now())
{
    replacement = this;
}

ReplacedTime::~ReplacedTime()
{
    replacement = nullptr;
}

} // namespace velko
