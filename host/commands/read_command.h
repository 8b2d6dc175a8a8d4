// Reads variables once and prints them.
#pragma once

#include "host/commands/command.h"
#include "host/commands/line_options.h"
#include "host/commands/one_shot.h"
#include "host/commands/talk_options.h"
#include "host/core/loop/communication_loop.h"
#include "host/core/variables/variable.h"

#include <string>
#include <vector>

namespace velko
{

class ReadCommand : public Command
{
public:
    explicit ReadCommand(CLI::App &program);

    int run() override;

private:
    int print(const CommunicationLoop &loop, const Variable &variable) const;
    void printByReference(const std::string &text, const Variable &variable) const;

    LineOptions m_line;
    OneShotOptions m_what;
    TalkOptions m_talk;
    int m_count = 1;
    std::vector<std::string> m_names;
};

} // namespace velko
