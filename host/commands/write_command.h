// Writes variables once and tells what became of it.
#pragma once

#include "host/commands/command.h"
#include "host/commands/one_shot.h"

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
    /// Prints what the first one that is no value is refused for.
    static bool areValues(const std::vector<Write> &todo);

    LineOptions m_line;
    OneShotOptions m_what;
    TalkOptions m_talk;
    std::vector<std::string> m_values;
};

} // namespace velko
