// A sub-command of panelhost.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace velko
{

class Command
{
public:
    /// `program` is the caller's and outlives the command.
    Command(CLI::App &program, const std::string &name, const std::string &help)
        : m_options(*program.add_subcommand(name, help))
    {
    }
    virtual ~Command() = default;
    Command(const Command &) = delete;
    Command &operator=(const Command &) = delete;

    /// True if the command line contains this command.
    bool isChosen() const { return m_options.parsed(); }

    /// Executes the command. Called after the options are parsed, if the command is chosen. Returns
    /// an ExitStatus. Throws std::invalid_argument for wrong usage, FileError, PortError, or any
    /// other std::exception.
    virtual int run() = 0;

protected:
    CLI::App &m_options;
};

} // namespace velko
