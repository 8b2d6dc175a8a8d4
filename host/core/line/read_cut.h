// Ends the wait for a response when the program ends.
#pragma once

#include "host/core/line/line_times.h"

#include <atomic>
#include <limits>

namespace velko
{

/// A request that only reads may be cut. The response to a write is awaited, because it tells
/// whether the PLC has carried the write out. Any thread may call.
class ReadCut
{
public:
    /// How long a read in progress may still take after a request to end.
    static constexpr milliseconds PATIENCE = milliseconds(1000);

    /// Reads end within PATIENCE from now.
    void request() { m_end = (Clock::now() + PATIENCE).time_since_epoch().count(); }
    /// Reads take their time.
    void withdraw() { m_end = NEVER; }

    /// True if a read in progress must end.
    bool isDue() const { return Clock::now().time_since_epoch().count() >= m_end; }

private:
    static constexpr Clock::rep NEVER = std::numeric_limits<Clock::rep>::max();

    std::atomic<Clock::rep> m_end{NEVER};
};

} // namespace velko
