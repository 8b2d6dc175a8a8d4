// Faults that are set at certain times after the start.
#pragma once

#include "host/plc/faults.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>

namespace velko
{

struct TimedFault {
    std::chrono::milliseconds time; ///< after the start
    std::string text;               ///< of the fault, as given by the user
    StationFault fault;
};

/// Used by one thread.
class FaultSchedule
{
public:
    /// Faults of the same time remain in the order in which they were added.
    void add(const TimedFault &fault);

    /// Removes the first fault whose time has come, if any.
    std::optional<TimedFault> takeDue(std::chrono::milliseconds elapsed);

    /// Time of the next fault, if any.
    std::optional<std::chrono::milliseconds> nextTime() const;

private:
    std::deque<TimedFault> m_faults; // earliest first
};

} // namespace velko
