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
    /// Adds a fault. Faults of the same time keep the order in which they were added.
    void add(const TimedFault &fault);

    /// Removes and returns the first fault that is due. No value: none is due.
    std::optional<TimedFault> takeDue(std::chrono::milliseconds elapsed);

    /// Returns the time of the next fault. No value: there is none.
    std::optional<std::chrono::milliseconds> nextTime() const;

private:
    std::deque<TimedFault> m_faults; // earliest first
};

} // namespace velko
