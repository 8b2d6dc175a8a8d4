// Reads variables and prints them.
#pragma once

#include "host/commands/command.h"
#include "host/commands/line_options.h"
#include "host/commands/one_shot.h"
#include "host/commands/talk_options.h"
#include "host/core/links/link.h"
#include "host/core/session/snapshot.h"

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
    Link link() const;
    bool isRepeated() const;
    int repeat(OneShotLoop &once, const Link &link) const;
    /// Prints what was read. Returns the worst ExitStatus.
    int print(const OneShotLoop &once, const Link &link) const;
    void printText(const ValueRow &row) const;
    void printJson(const ValueRow &row) const;
    /// Returns a row for each value that mbpoll would print on a line of its own.
    std::vector<ValueRow> rowsOf(const ValueRow &row) const;

    LineOptions m_line;
    OneShotOptions m_what;
    TalkOptions m_talk;
    int m_count = 1;
    int m_interval = 0; // milliseconds
    bool m_isOnce = false;
    bool m_isJson = false;
    std::vector<std::string> m_names;
};

} // namespace velko
