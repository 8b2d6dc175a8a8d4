// The sub-command `simulate`.
#pragma once

#include "host/commands/command.h"
#include "host/commands/talk_options.h"
#include "host/plc/fault_schedule.h"
#include "host/plc/faults.h"

#include <string>
#include <vector>

namespace velko
{

/// Runs simulated PLCs, so that a master can be tested without a device.
class SimulateCommand : public Command
{
public:
    explicit SimulateCommand(CLI::App &program);

    int run() override;

private:
    void addLineOptions();
    void addFaultOptions();
    std::vector<StationFault> faultsAtStart() const;
    FaultSchedule laterFaults() const;

    TapOptions m_taps;
    std::vector<int> m_stations = {1, 2, 3};
    int m_baudRate = 19200; // 0: no transmission time
    std::vector<std::string> m_faults;
    std::vector<std::string> m_laterFaults;
    bool m_echo = false;
    std::string m_link; // empty: none
    std::string m_seconds;
};

} // namespace velko
