#include "host/commands/simulate_run.h"

#include "host/commands/simulate_faults.h"
#include "host/commands/simulate_report.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace velko
{

namespace
{

using std::chrono::milliseconds;

const milliseconds LONGEST_WAIT(60000);

} // namespace

SimulateRun::SimulateRun(SimulatedPlc &plc, std::vector<int> stations, FaultSchedule schedule,
                         std::optional<milliseconds> end)
    : m_plc(plc),
      m_stations(std::move(stations)),
      m_schedule(std::move(schedule)),
      m_end(end)
{
}

void SimulateRun::run(Console &console)
{
    while (!isOver()) {
        setDueFaults();
        std::fflush(stdout);
        const Console::Input input = console.wait(static_cast<int>(waitTime().count()));
        if (input.isEnd || input.isReload)
            return;
        for (const std::string &line : input.lines)
            enterFault(line);
    }
}

milliseconds SimulateRun::elapsed() const
{
    const auto now = std::chrono::steady_clock::now();
    return std::chrono::duration_cast<milliseconds>(now - m_start);
}

milliseconds SimulateRun::waitTime() const
{
    const milliseconds now = elapsed();
    const milliseconds latest = now + LONGEST_WAIT;
    const milliseconds next =
        std::min({latest, m_end.value_or(latest), m_schedule.nextTime().value_or(latest)});
    return std::max(next - now, milliseconds(0));
}

void SimulateRun::setDueFaults()
{
    while (const std::optional<TimedFault> due = m_schedule.takeDue(elapsed())) {
        m_plc.setFault(due->fault.station, due->fault.fault);
        printTimedFault(*due);
    }
}

void SimulateRun::enterFault(const std::string &line)
{
    try {
        const StationFault fault = faultFor(m_stations, line);
        m_plc.setFault(fault.station, fault.fault);
        printNewFault(line);
    } catch (const std::invalid_argument &error) {
        printRefusal(error.what());
    }
}

} // namespace velko
