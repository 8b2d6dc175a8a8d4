// Writes variables once and reports the results.
#pragma once

#include "host/commands/command.h"
#include "host/commands/line_options.h"
#include "host/commands/one_shot.h"
#include "host/commands/talk_options.h"
#include "host/core/variables/variable.h"

#include <string>
#include <vector>

namespace velko
{

class WriteCommand : public Command
{
public:
    explicit WriteCommand(CLI::App &program);

    int run() override;

private:
    struct Write {
        Variable variable;
        std::string text;
    };

    std::vector<Write> writes() const;
    /// Prints the reason for the first value that is refused.
    static bool areValues(const std::vector<Write> &todo);

    LineOptions m_line;
    OneShotOptions m_what;
    TalkOptions m_talk;
    std::vector<std::string> m_values;
};

} // namespace velko
