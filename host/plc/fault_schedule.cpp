#include "host/plc/fault_schedule.h"

#include <algorithm>

namespace velko
{

using std::chrono::milliseconds;

void FaultSchedule::add(const TimedFault &fault)
{
    const auto position = std::upper_bound(
        m_faults.begin(), m_faults.end(), fault,
        [](const TimedFault &left, const TimedFault &right) { return left.time < right.time; });
    m_faults.insert(position, fault);
}

std::optional<TimedFault> FaultSchedule::takeDue(milliseconds elapsed)
{
    if (m_faults.empty() || m_faults.front().time > elapsed)
        return std::nullopt;
    TimedFault due = m_faults.front();
    m_faults.pop_front();
    return due;
}

std::optional<milliseconds> FaultSchedule::nextTime() const
{
    if (m_faults.empty())
        return std::nullopt;
    return m_faults.front().time;
}

} // namespace velko
