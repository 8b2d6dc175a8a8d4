// The reference host: runs the driver on a serial line, or on a simulated PLC when none is named.
#include "host/demo.h"
#include "host/device_poll.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>

#include <cstdio>
#include <filesystem>

namespace
{

enum ExitStatus { EXIT_GOOD = 0, EXIT_DISAGREES = 1, EXIT_USAGE = 2, EXIT_PORT = 3 };

const char *const LIBRARY_NAME = "libVelko_Modbus_RTU.so.1";

struct Options {
    PollSettings poll;
    std::string device;
    std::string peer;
    std::string parity = "N";
    std::vector<std::string> variables;
};

// The file beside the program or, in a build tree, one folder up.
std::string builtLibrary()
{
    namespace fs = std::filesystem;
    const fs::path folder(QCoreApplication::applicationDirPath().toStdString());
    const fs::path beside = folder / LIBRARY_NAME;
    return fs::exists(beside) ? beside.string() : (folder.parent_path() / LIBRARY_NAME).string();
}

// A double word must not be cut in two, and function 16 carries no more than 123 registers.
std::string checkMaxRegs(const std::string &text)
{
    const int maxRegs = std::atoi(text.c_str());
    if (maxRegs < 2 || maxRegs > 122 || maxRegs % 2 != 0)
        return "must be an even number from 2 to 122";
    return std::string();
}

void describe(CLI::App &app, Options &options)
{
    PollSettings &poll = options.poll;
    app.add_option("--device", options.device,
                   "serial device; without one the demo runs on a simulated PLC");
    app.add_option(
        "--read", options.variables,
        "variable to poll, KIND:ADDRESS[:LENGTH], for example 7:100:2; kinds 0 to 11 are "
        "bit, byte, word and double word of input, holding and holding 5000");
    app.add_option("--baud", poll.line.baudRate, "baud rate")
        ->check(CLI::Range(300, 4000000))
        ->capture_default_str();
    app.add_option("--parity", options.parity, "N (two stop bits), E or O")
        ->check(CLI::IsMember({"N", "E", "O"}))
        ->capture_default_str();
    app.add_option("--station", poll.station, "slave to poll")
        ->check(CLI::Range(1, 247))
        ->capture_default_str();
    app.add_option("--max-regs", poll.maxRegs, "registers per request at the most")
        ->check(CLI::Validator(checkMaxRegs, "EVEN 2..122"))
        ->capture_default_str();
    app.add_option("--timeout", poll.line.replyTimeout, "milliseconds to wait for an answer")
        ->check(CLI::Range(1, 60000))
        ->capture_default_str();
    app.add_option("--retries", poll.retryLimit, "failed exchanges before a request is given up")
        ->check(CLI::Range(0, 100))
        ->capture_default_str();
    app.add_option("--seconds", poll.seconds, "how long to poll")
        ->check(CLI::Range(1, 86400))
        ->capture_default_str();
    app.add_option("--peer", options.peer,
                   "independent master (mbpoll) that the demo compares with");
    app.add_option("--library", poll.library, "the driver's file")->capture_default_str();
}

int run(Options &options)
{
    if (options.device.empty()) {
        const DemoSettings demo{options.poll.library, QString::fromStdString(options.peer),
                                options.poll.maxRegs};
        return runDemo(demo) ? EXIT_GOOD : EXIT_DISAGREES;
    }
    if (options.variables.empty())
        throw std::invalid_argument("--device needs at least one --read");
    for (const std::string &text : options.variables)
        options.poll.variables.push_back(parseVariable(text));
    options.poll.line.device = QString::fromStdString(options.device);
    options.poll.line.parity = options.parity.front();
    return pollDevice(options.poll) ? EXIT_GOOD : EXIT_DISAGREES;
}

int parseAndRun(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    Options options;
    options.poll.library = builtLibrary();
    CLI::App app("Reference host of the Modbus RTU driver.\n"
                 "Exit status: 0 good, 1 a value disagrees or was not read, 2 wrong usage, "
                 "3 the port or the driver cannot be used.");
    describe(app, options);
    try {
        app.parse(argc, argv);
        return run(options);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? EXIT_GOOD : EXIT_USAGE;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        return parseAndRun(argc, argv);
    } catch (const std::invalid_argument &error) {
        std::fprintf(stderr, "panelhost: %s\n", error.what());
        return EXIT_USAGE;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "panelhost: %s\n", error.what());
        return EXIT_PORT;
    }
}
