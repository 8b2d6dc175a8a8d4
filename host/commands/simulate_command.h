// Simulated PLCs for whoever wants to try a master without a device.
#pragma once

#include "host/commands/command.h"
#include "host/commands/talk_options.h"

#include <string>
#include <vector>

namespace velko
{

class SimulateCommand : public Command
{
public:
    explicit SimulateCommand(CLI::App &program);

    int run() override;

private:
    TapOptions m_taps;
    std::vector<int> m_stations = {1, 2, 3};
    int m_baudRate = 19200;
    std::vector<std::string> m_faults;
    std::vector<std::string> m_laterFaults;
    bool m_echo = false;
    std::string m_link;
    std::string m_seconds;
};

} // namespace velko
