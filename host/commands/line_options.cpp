#include "host/commands/line_options.h"

#include "host/commands/number_options.h"
#include "host/commands/station_list.h"
#include "host/core/sizes/limits.h"
#include "host/core/text/numbers.h"

#include <cctype>
#include <stdexcept>

namespace velko
{

namespace
{

std::string checkStations(const std::string &text)
{
    try {
        parseStations(text);
        return std::string();
    } catch (const std::invalid_argument &error) {
        return error.what();
    }
}

void checkMode(const std::string &mode)
{
    if (mode != "rtu")
        throw std::invalid_argument(
            "-m " + mode
            + ": only Modbus RTU on a serial line is supported. Use -m rtu, or leave -m out, and "
              "name a serial port.");
}

} // namespace

LineOptions::LineOptions(CLI::App &options)
{
    LineSettings &line = m_link.line;
    m_link.retries = 1; // a script must not wait long for a station that does not exist
    options.add_option("device", m_device, "serial port, for example /dev/ttyUSB0")->required();
    options.add_option("-a,--station", m_stations, "station address")
        ->type_name("1..247")
        ->check(CLI::Validator(checkStations, ""))
        ->capture_default_str();
    options.add_option_function<std::string>("-m", checkMode, "mode: rtu, accepted as by mbpoll")
        ->type_name("MODE");
    options.add_option("-b,--baud", line.baudRate, "baud rate")
        ->check(numberFrom(LOWEST_BAUD, HIGHEST_BAUD))
        ->capture_default_str();
    options.add_option("-P,--parity", m_parity, "parity")
        ->check(CLI::IsMember({"none", "even", "odd"}))
        ->capture_default_str();
    options.add_option("-s,--stop-bits", line.stopBits, "stop bits")
        ->check(numberFrom(1, HIGHEST_STOP_BITS))
        ->capture_default_str();
    options.add_option("-o,--timeout", m_timeout, "response timeout in seconds")
        ->type_name("SECONDS")
        ->check(secondsFrom(1, LONGEST_TIME))
        ->capture_default_str();
    options
        .add_option(
            "--guard", m_guard,
            "guard time in seconds: silence after a missing or truncated response (default: "
            "0.05; --timeout for writes, and if all responses have one length)")
        ->type_name("SECONDS")
        ->check(secondsFrom(0, LONGEST_TIME));
    options
        .add_option("--byte-timeout", line.interCharacterTimeout,
                    "inter-character timeout in milliseconds")
        ->check(numberFrom(1, LONGEST_TIME))
        ->capture_default_str();
    options
        .add_option("--silence", line.minFrameGap,
                    "shortest frame gap in microseconds; at least 3.5 characters are always kept")
        ->check(numberFrom(0, 1000 * LONGEST_SILENCE))
        ->capture_default_str();
    options
        .add_option("--retries", m_link.retries,
                    "retries before a request is given up: one retry makes two tries")
        ->check(numberFrom(0, HIGHEST_RETRIES))
        ->capture_default_str();
    options
        .add_option("--max-regs", m_link.maxRegs, "maximum number of registers per request; even")
        ->check(numberFrom(LOWEST_MAX_REGS, HIGHEST_MAX_REGS_WRITING))
        ->check(CLI::Validator(
            [](std::string &text) {
                return isWholeDoubleWords(std::stoi(text)) ? std::string() : "must be even";
            },
            "EVEN"))
        ->capture_default_str();
    CLI::Option *const onSend = options.add_flag(
        "-F", m_isRtsOnSend, "RS-485 direction by the kernel: RTS on while sending");
    options
        .add_flag("-R", m_isRtsAfterSend, "RS-485 direction by the kernel: RTS on after sending")
        ->excludes(onSend);
    options.add_flag("--echo", line.echo, "the adapter echoes each request: remove the echo");
}

std::vector<int> LineOptions::stations() const
{
    return parseStations(m_stations);
}

int LineOptions::station() const
{
    const std::vector<int> all = stations();
    if (all.size() > 1)
        throw std::invalid_argument("-a " + m_stations
                                    + ": a write takes one station. Run it once for each one.");
    return all.front();
}

Link LineOptions::link() const
{
    Link link = m_link;
    link.name = "line";
    link.line.devices = {m_device};
    link.line.parity = static_cast<char>(std::toupper(static_cast<unsigned char>(m_parity[0])));
    link.line.responseTimeout = millisecondsIn(m_timeout);
    if (!m_guard.empty())
        link.line.guardTime = millisecondsIn(m_guard);
    if (m_isRtsOnSend)
        link.line.rs485 = Rs485::RTS_ON_SEND;
    if (m_isRtsAfterSend)
        link.line.rs485 = Rs485::RTS_AFTER_SEND;
    return link;
}

} // namespace velko
