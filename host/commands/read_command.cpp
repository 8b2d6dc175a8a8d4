#include "host/commands/read_command.h"

#include "host/commands/exit_status.h"
#include "host/commands/help_texts.h"
#include "host/commands/number_options.h"
#include "host/core/line/line_times.h"
#include "host/core/sizes/limits.h"
#include "host/core/sizes/units.h"
#include "host/core/variables/formats.h"
#include "host/views/json_objects.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <sstream>

namespace velko
{

namespace
{

// Exit status for a value, and GOOD only if it is good.
int statusOf(const ValueState &state)
{
    if (state.freshness == Freshness::GOOD)
        return EXIT_GOOD;
    return std::max<int>(exitStatusOf(state.lastAttempt.kind), EXIT_SILENT);
}

void printError(const ValueRow &row)
{
    const std::string &reason = row.state.lastAttempt.text;
    std::fprintf(stderr, "panelhost: station %d, %s: %s\n", row.variable.station,
                 placeOf(row.variable).c_str(),
                 reason.empty() ? nameOf(row.state.freshness) : reason.c_str());
}

} // namespace

ReadCommand::ReadCommand(CLI::App &program)
    : Command(program, "read",
              "Read variables once, or at an interval, and print one line per variable"),
      m_line(m_options),
      m_what(m_options),
      m_talk(m_options)
{
    m_options.get_option("--station")
        ->description("station address, or a list of them, for example 1,3,36:40");
    m_options.add_option("-c,--count", m_count, "number of values, starting at -r")
        ->check(numberFrom(1, HIGHEST_COUNT))
        ->capture_default_str();
    m_options.add_flag("-1", m_isOnce, "read once, also with -l (default without -l)");
    m_options
        .add_option("-l,--interval", m_interval,
                    "read again at this interval in milliseconds, until Ctrl-C")
        ->check(numberFrom(SHORTEST_INTERVAL, LONGEST_INTERVAL));
    m_options.add_flag("--json", m_isJson, "print a JSON object for each value");
    m_options.add_option("variables", m_names,
                         "variables, see below; if there are none: what -t, -r and -c select");
    m_options.footer(
        variablesHelp()
        + "If -a names several stations, each one is read, and each line begins with its "
          "station.\n"
          "\nExamples:\n"
          "  panelhost read /dev/ttyUSB0 -a 3 7:100 1:3.5 input-word:0:s16:4\n"
          "  panelhost read /dev/ttyUSB0 -a 3 -r 101 -t 4:float -B\n"
          "  panelhost read /dev/ttyUSB0 -a 1,3,36:40 -l 1000 --json 7:100\n");
}

int ReadCommand::run()
{
    const Link toRead = link();
    m_talk.begin();
    OneShotLoop once(m_talk, toRead);
    int status = EXIT_GOOD;
    if (isRepeated()) {
        status = repeat(once, toRead);
    } else {
        once.readAll();
        status = print(once, toRead);
    }
    m_talk.finish();
    return status;
}

Link ReadCommand::link() const
{
    if (!m_names.empty() && (m_what.isByReference() || m_options.count("-c") > 0))
        throw std::invalid_argument("-t, -r, -0 and -c cannot be combined with variables");
    Link link = m_line.link();
    link.name = link.line.devices.front();
    link.staleAfter = LONGEST_STALE_AFTER; // silent stations may delay the end of the first round
    for (const int station : m_line.stations()) {
        for (const std::string &name : m_names)
            link.variables.push_back(parseVariable(name, station, Access::READ));
        if (m_names.empty())
            link.variables.push_back(m_what.byReference(station, m_count, Access::READ));
    }
    return link;
}

bool ReadCommand::isRepeated() const
{
    return m_interval > 0 && !m_isOnce;
}

// The round that the user interrupts counts only if it is the first one.
int ReadCommand::repeat(OneShotLoop &once, const Link &link) const
{
    Interruption &interruption = once.interruption();
    std::optional<int> status;
    while (!interruption.isRequested() && std::ferror(stdout) == 0) {
        const Clock::time_point next = Clock::now() + milliseconds(m_interval);
        once.readAll();
        if (interruption.isRequested() && status)
            break;
        status = std::max(status.value_or(EXIT_GOOD), print(once, link));
        std::fflush(stdout);
        interruption.wait(milliseconds(millisecondsUntil(next)));
    }
    return status.value_or(EXIT_PROGRAM);
}

int ReadCommand::print(const OneShotLoop &once, const Link &link) const
{
    int status = EXIT_GOOD;
    for (const Variable &variable : link.variables) {
        const ValueState state = once.loop().status().stateOf(variable);
        const std::string text = state.age ? textOf(variable, once.loop().value(variable)) : "-";
        const ValueRow row{link.name, variable, text, state};
        status = std::max(status, statusOf(state));
        if (m_isJson)
            printJson(row);
        else if (state.freshness == Freshness::GOOD)
            printText(row);
        else
            printError(row);
    }
    return status;
}

void ReadCommand::printText(const ValueRow &row) const
{
    const bool isOneStation = m_line.stations().size() == 1;
    const std::string station =
        isOneStation ? "" : "station " + std::to_string(row.variable.station) + ": ";
    for (const ValueRow &one : rowsOf(row))
        std::printf(m_names.empty() ? "%s[%s]: \t%s\n" : "%s%s = %s\n", station.c_str(),
                    one.variable.name.c_str(), one.text.c_str());
}

void ReadCommand::printJson(const ValueRow &row) const
{
    for (const ValueRow &one : rowsOf(row))
        std::printf("%s\n", timedJsonLine("value", valueObject(one)).c_str());
}

// Values by reference have the number of their first register as a name, as mbpoll prints it.
std::vector<ValueRow> ReadCommand::rowsOf(const ValueRow &row) const
{
    if (!m_names.empty())
        return {row};
    const bool isText = row.variable.format.type == Format::TEXT;
    const int step = valueBits(row.variable.format) / REGISTER_BITS;
    std::istringstream values(row.text);
    std::vector<ValueRow> rows;
    for (int i = 0; i < (isText ? 1 : row.variable.count); ++i) {
        ValueRow one = row;
        one.variable.name = std::to_string(m_what.reference() + i * step);
        if (!isText) {
            one.variable.address = std::to_string(std::stoi(row.variable.address) + i * step);
            one.variable.count = 1;
            if (row.state.age)
                values >> one.text;
        }
        rows.push_back(one);
    }
    return rows;
}

} // namespace velko
