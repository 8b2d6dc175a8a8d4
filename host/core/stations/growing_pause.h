// Growing pauses between attempts that fail.
#pragma once

#include <algorithm>
#include <chrono>

namespace velko
{

/// Used by one thread.
class GrowingPause
{
public:
    GrowingPause(std::chrono::milliseconds first, std::chrono::milliseconds step,
                 std::chrono::milliseconds highest)
        : m_first(first),
          m_step(step),
          m_highest(highest),
          m_next(first)
    {
    }

    /// Returns the pause before the next attempt.
    std::chrono::milliseconds next()
    {
        const std::chrono::milliseconds pause = m_next;
        m_next = std::min(m_next + m_step, m_highest);
        return pause;
    }

    /// Begins with the first pause again.
    void restart() { m_next = m_first; }

private:
    std::chrono::milliseconds m_first;
    std::chrono::milliseconds m_step;
    std::chrono::milliseconds m_highest;
    std::chrono::milliseconds m_next;
};

} // namespace velko
