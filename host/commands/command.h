// A sub-command of panelhost.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace velko
{

class Command
{
public:
    /// `program` outlives the command.
    Command(CLI::App &program, const std::string &name, const std::string &help)
        : m_options(*program.add_subcommand(name, help))
    {
    }
    virtual ~Command() = default;
    Command(const Command &) = delete;
    Command &operator=(const Command &) = delete;

    bool isChosen() const { return m_options.parsed(); }

    /// Called after the options are parsed, if the command was chosen. Returns an ExitStatus.
    /// Throws std::invalid_argument for wrong usage; other exceptions as their types say.
    virtual int run() = 0;

protected:
    CLI::App &m_options;
};

} // namespace velko
