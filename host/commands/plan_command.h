// Shows the requests for the variables of a file, without sending them.
#pragma once

#include "host/commands/command.h"

#include <string>

namespace velko
{

class PlanCommand : public Command
{
public:
    explicit PlanCommand(CLI::App &program);

    int run() override;

private:
    std::string m_file;
    std::string m_library;
    bool m_isJson = false;
};

} // namespace velko
