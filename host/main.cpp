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

// Numbers in decimal, from 1 to 9 digits without a leading 0: "010" is not to be taken for octal.
std::string checkNumber(const std::string &text, int lowest, int highest)
{
    const bool isDecimal = !text.empty() && text.size() <= 9
                           && text.find_first_not_of("0123456789") == std::string::npos
                           && (text == "0" || text[0] != '0');
    if (isDecimal && std::stoi(text) >= lowest && std::stoi(text) <= highest)
        return std::string();
    return "\"" + text + "\" is not a number from " + std::to_string(lowest) + " to "
           + std::to_string(highest) + " without leading zeros";
}

CLI::Validator numberFrom(int lowest, int highest)
{
    return {[=](std::string &text) { return checkNumber(text, lowest, highest); },
            std::to_string(lowest) + ".." + std::to_string(highest)};
}

// A double word must not be cut in two, and function 16 carries no more than 123 registers.
CLI::Validator evenNumber()
{
    return {[](std::string &text) {
                return !text.empty() && (text.back() - '0') % 2 == 0 ? std::string()
                                                                     : "must be even";
            },
            "EVEN"};
}

const char *const FOOTER = R"(
Variables are KIND:ADDRESS or KIND:ADDRESS:LENGTH. Kinds:
               input  holding  holding 5000   ADDRESS             LENGTH counts
  bit            0       1          2         BYTE.BIT            bits
  byte           3       4          5         byte                bytes
  word           6       7          8         register            words
  double word    9      10         11         2 registers: n is   words
                                              2n and 2n + 1
Bytes 2r and 2r + 1 are register r, byte 2r its low half. "holding 5000" are the holding registers
from 5000 on the line. For example 7:100:2 are the words 100 and 101, 1:3.5 is bit 5 of byte 3.

Exit status: 0 good; 1 a value disagrees, was not read or was given up; 2 wrong usage; 3 the port, the
driver, the peer or the output cannot be used.)";

void describe(CLI::App &app, Options &options)
{
    PollSettings &poll = options.poll;
    CLI::Option *const device = app.add_option(
        "--device", options.device, "serial device; without one the demo runs on a simulated PLC");
    const auto ofDevice = [&](const char *name, auto &target, const char *help) {
        return app.add_option(name, target, help)->needs(device)->capture_default_str();
    };
    app.add_option("--read", options.variables, "variable to poll, see below; as often as wanted")
        ->needs(device);
    ofDevice("--baud", poll.line.baudRate, "baud rate")->check(numberFrom(300, 4000000));
    ofDevice("--parity", options.parity, "N (two stop bits), E or O")
        ->check(CLI::IsMember({"N", "E", "O"}));
    ofDevice("--station", poll.station, "slave to poll")->check(numberFrom(1, 247));
    ofDevice("--timeout", poll.line.replyTimeout, "milliseconds to wait for an answer")
        ->check(numberFrom(1, 60000));
    ofDevice("--retries", poll.retryLimit, "failed exchanges before a request is given up")
        ->check(numberFrom(0, 100));
    ofDevice("--seconds", poll.seconds, "how long to poll")->check(numberFrom(1, 86400));
    app.add_option("--max-regs", poll.maxRegs, "registers per request at the most")
        ->check(numberFrom(2, 122))
        ->check(evenNumber())
        ->capture_default_str();
    app.add_option("--peer", options.peer,
                   "independent master (mbpoll) that the demo compares with")
        ->excludes(device);
    app.add_option("--library", poll.library, "the driver's file")->capture_default_str();
    app.footer(FOOTER);
}

int run(Options &options, bool onDevice)
{
    if (!onDevice) {
        const DemoSettings demo{options.poll.library, QString::fromStdString(options.peer),
                                options.poll.maxRegs};
        return runDemo(demo) ? EXIT_GOOD : EXIT_DISAGREES;
    }
    if (options.device.empty())
        throw std::invalid_argument("--device is empty");
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
    CLI::App app("Reference host of the Modbus RTU driver.");
    describe(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0)
            return app.exit(error); // --help
        throw std::invalid_argument(std::string(error.what())
                                    + "\nRun with --help for the options.");
    }
    return run(options, app.count("--device") > 0);
}

// A full disk or a closed pipe must not pass for success.
int checkOutput(int status)
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return status;
    throw std::runtime_error("the output could not be written");
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        return checkOutput(parseAndRun(argc, argv));
    } catch (const std::invalid_argument &error) {
        std::fprintf(stderr, "panelhost: %s\n", error.what());
        return EXIT_USAGE;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "panelhost: %s\n", error.what());
        return EXIT_PORT;
    }
}
