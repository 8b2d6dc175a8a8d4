// Sets faults while simulated PLCs run, by the schedule and by the user's input.
#pragma once

#include "host/commands/console.h"
#include "host/plc/fault_schedule.h"
#include "host/plc/simulated_plc.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace velko
{

class SimulateRun
{
public:
    using Milliseconds = std::chrono::milliseconds;

    /// The times of the schedule and `end` count from the construction. Without `end`, only a
    /// signal ends the run. `plc` is the caller's and outlives this object.
    SimulateRun(SimulatedPlc &plc, std::vector<int> stations, FaultSchedule schedule,
                std::optional<Milliseconds> end);

    /// Returns at `end` or at a signal. Prints each change of a fault.
    void run(Console &console);

private:
    Milliseconds elapsed() const;
    Milliseconds waitTime() const;
    bool isOver() const { return m_end && elapsed() >= *m_end; }
    void setDueFaults();
    void enterFault(const std::string &line);

    SimulatedPlc &m_plc;
    const std::vector<int> m_stations;
    FaultSchedule m_schedule;
    const std::optional<Milliseconds> m_end;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace velko
