// panelhost: the program that runs the driver on serial lines.
#include "host/commands/exit_status.h"
#include "host/commands/help_texts.h"
#include "host/commands/plan_command.h"
#include "host/commands/poll_command.h"
#include "host/commands/read_command.h"
#include "host/commands/simulate_command.h"
#include "host/commands/write_command.h"
#include "host/core/line/port_error.h"
#include "host/core/links/file_error.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdio>

namespace velko
{

namespace
{

int runChosen(const std::vector<std::unique_ptr<Command>> &commands)
{
    for (const std::unique_ptr<Command> &command : commands)
        if (command->isChosen())
            return command->run();
    return EXIT_USAGE;
}

// The parser would take a negative value for options: "-12" for -1 and -2, "-0.5" for -0.
void checkNegativeNumbers(int argc, char *argv[])
{
    for (int i = 2; i < argc && std::string(argv[i]) != "--"; ++i) {
        const std::string text = argv[i];
        const bool isNumber =
            text.size() > 1 && text[0] == '-' && text.find_first_of("0123456789.", 1) == 1;
        const bool isOption = text == "-0" || (text == "-1" && std::string(argv[1]) == "read");
        if (isNumber && !isOption)
            throw std::invalid_argument(text
                                        + ": put negative values after --, for example: panelhost "
                                          "write DEVICE -r 101 -t 4:s16 -- -12. A write needs no "
                                          "-1: it is made once.");
    }
}

void checkSubcommand(const CLI::App &program, int argc, char *argv[])
{
    if (argc > 1 && argv[1][0] != '-'
        && program
               .get_subcommands(
                   [argv](const CLI::App *command) { return command->get_name() == argv[1]; })
               .empty())
        throw std::invalid_argument(std::string("unknown sub-command \"") + argv[1]
                                    + "\". Run panelhost --help for the list.");
}

int parseAndRun(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    CLI::App program(
        "Read and write variables of PLCs on serial lines, with the Modbus RTU driver of operator "
        "panels");
    program.require_subcommand(1);
    program.set_version_flag("--version", PROJECT_VERSION);
    program.footer("Each sub-command has its own --help.\n" + exitStatusHelp());
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(std::make_unique<PollCommand>(program));
    commands.push_back(std::make_unique<PlanCommand>(program));
    commands.push_back(std::make_unique<ReadCommand>(program));
    commands.push_back(std::make_unique<WriteCommand>(program));
    commands.push_back(std::make_unique<SimulateCommand>(program));
    checkSubcommand(program, argc, argv);
    checkNegativeNumbers(argc, argv);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0)
            return program.exit(error); // --help
        throw std::invalid_argument(std::string(error.what())
                                    + ". Run with --help for the options.");
    }
    return runChosen(commands);
}

// A full disk or a closed pipe is not a success.
int checkOutput(int status)
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return status;
    throw std::runtime_error("standard output could not be written");
}

int fail(const std::exception &error, int status)
{
    std::fflush(stdout);
    std::fprintf(stderr, "panelhost: %s\n", error.what());
    return status;
}

} // namespace

int runProgram(int argc, char *argv[])
{
    // If the reader of the output ends, the program reports it and closes the port properly.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return checkOutput(parseAndRun(argc, argv));
    } catch (const std::invalid_argument &error) {
        return fail(error, EXIT_USAGE);
    } catch (const FileError &error) {
        return fail(error, EXIT_FILE);
    } catch (const PortError &error) {
        return fail(error, EXIT_PORT);
    } catch (const std::exception &error) {
        return fail(error, EXIT_PROGRAM);
    }
}

} // namespace velko

int main(int argc, char *argv[])
{
    return velko::runProgram(argc, argv);
}
