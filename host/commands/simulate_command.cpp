#include "host/commands/simulate_command.h"

#include "host/commands/console.h"
#include "host/commands/exit_status.h"
#include "host/commands/number_options.h"
#include "host/commands/simulate_faults.h"
#include "host/commands/simulate_report.h"
#include "host/commands/simulate_run.h"
#include "host/core/sizes/limits.h"
#include "host/core/text/numbers.h"
#include "host/plc/device_link.h"

#include <chrono>
#include <optional>
#include <set>
#include <stdexcept>

namespace velko
{

namespace
{

using std::chrono::milliseconds;

const int SHORTEST_SIMULATION = 1; // ms

void requireDifferent(const std::vector<int> &stations)
{
    std::set<int> known;
    for (const int station : stations) {
        if (!known.insert(station).second)
            throw std::invalid_argument("--station " + std::to_string(station)
                                        + " is given more than once");
    }
}

void requireFree(const std::string &link)
{
    if (!DeviceLink::isFree(link))
        throw std::invalid_argument("--link: \"" + link
                                    + "\" exists and is not a symbolic link. Choose another name.");
}

} // namespace

SimulateCommand::SimulateCommand(CLI::App &program)
    : Command(program, "simulate", "Simulate PLCs on a pseudo-terminal, to test a master"),
      m_taps(m_options)
{
    addLineOptions();
    addFaultOptions();
    m_options
        .add_option("--seconds", m_seconds,
                    "stop after this many seconds (default: at Ctrl-C or SIGTERM)")
        ->check(secondsFrom(SHORTEST_SIMULATION, LONGEST_RUN));
    m_options.footer(simulateFooter());
}

void SimulateCommand::addLineOptions()
{
    m_options.add_option("--station", m_stations, "station number of a simulated PLC; repeatable")
        ->allow_extra_args(false)
        ->type_name("NUMBER")
        ->check(numberFrom(LOWEST_STATION, HIGHEST_STATION))
        ->capture_default_str();
    m_options
        .add_option("--baud", m_baudRate,
                    "baud rate; frames take as long as on a real line (0: no transmission time)")
        ->type_name("BAUD")
        ->check(numberFrom(0, HIGHEST_BAUD))
        ->capture_default_str();
    m_options.add_flag("--echo", m_echo,
                       "return what the master sends, as some RS-485 adapters do");
    m_options
        .add_option("--link", m_link,
                    "create a symbolic link to the device; it is removed at the end")
        ->type_name("PATH");
}

void SimulateCommand::addFaultOptions()
{
    m_options.add_option("--fault", m_faults, "set a fault at the start (see below); repeatable")
        ->allow_extra_args(false)
        ->type_name("STATION:FAULT");
    m_options.add_option("--at", m_laterFaults, "set a fault after this many seconds; repeatable")
        ->allow_extra_args(false)
        ->type_name("SECONDS:STATION:FAULT");
}

int SimulateCommand::run()
{
    SimulatedLineSettings settings;
    settings.stations = m_stations;
    settings.baudRate = m_baudRate;
    settings.echo = m_echo;
    settings.moving = true;
    m_taps.begin();
    settings.taps = {SINGLE_LINE, m_taps.taps()};
    requireDifferent(m_stations);
    const std::vector<StationFault> faults = faultsAtStart();
    const FaultSchedule schedule = laterFaults();
    std::optional<milliseconds> end;
    if (!m_seconds.empty())
        end = milliseconds(millisecondsIn(m_seconds));
    requireFree(m_link);

    Console console; // before the thread of the simulated line, which must not get its signals
    SimulatedPlc plc(settings);
    const DeviceLink link(m_link, plc.device().toStdString());
    for (const StationFault &fault : faults)
        plc.setFault(fault.station, fault.fault);
    printStart(plc, settings, m_link);
    SimulateRun(plc, m_stations, schedule, end).run(console);
    printRequests(plc, m_stations);
    m_taps.finish();
    return EXIT_GOOD;
}

std::vector<StationFault> SimulateCommand::faultsAtStart() const
{
    std::vector<StationFault> faults;
    faults.reserve(m_faults.size());
    for (const std::string &text : m_faults)
        faults.push_back(faultFor(m_stations, text));
    return faults;
}

FaultSchedule SimulateCommand::laterFaults() const
{
    FaultSchedule schedule;
    for (const std::string &text : m_laterFaults)
        schedule.add(timedFaultFor(m_stations, text));
    return schedule;
}

} // namespace velko
