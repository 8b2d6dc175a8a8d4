#include "host/commands/read_command.h"

#include "host/commands/exit_status.h"
#include "host/commands/help_texts.h"
#include "host/commands/number_options.h"
#include "host/core/sizes/limits.h"
#include "host/core/sizes/units.h"
#include "host/core/variables/formats.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace velko
{

ReadCommand::ReadCommand(CLI::App &program)
    : Command(program, "read", "Read variables once and print one line per variable"),
      m_line(m_options),
      m_what(m_options),
      m_talk(m_options)
{
    m_options.add_option("-c,--count", m_count, "number of values, starting at -r")
        ->check(numberFrom(1, HIGHEST_COUNT))
        ->capture_default_str();
    m_options.add_flag("-1", "read once: the default, accepted as by mbpoll");
    m_options.add_option("variables", m_names,
                         "variables, see below; if there are none: what -t, -r and -c select");
    m_options.footer(variablesHelp()
                     + "\nExamples:\n"
                       "  panelhost read /dev/ttyUSB0 -a 3 7:100 1:3.5 input-word:0:s16:4\n"
                       "  panelhost read /dev/ttyUSB0 -a 3 -r 101 -t 4:float -B\n");
}

int ReadCommand::run()
{
    if (!m_names.empty() && (m_what.isByReference() || m_options.count("-c") > 0))
        throw std::invalid_argument("-t, -r, -0 and -c cannot be combined with variables");
    Link link = m_line.link();
    for (const std::string &name : m_names)
        link.variables.push_back(parseVariable(name, m_line.station(), Access::READ));
    if (m_names.empty())
        link.variables.push_back(m_what.byReference(m_line.station(), m_count, Access::READ));
    m_talk.begin();
    OneShotLoop once(m_talk, link);
    once.readAll();
    int status = EXIT_GOOD;
    for (const Variable &variable : link.variables)
        status = std::max(status, print(once.loop(), variable));
    m_talk.finish();
    return status;
}

int ReadCommand::print(const CommunicationLoop &loop, const Variable &variable) const
{
    const ValueState state = loop.status().stateOf(variable);
    if (state.freshness != Freshness::GOOD) {
        const std::string reason =
            state.lastAttempt.text.empty() ? nameOf(state.freshness) : state.lastAttempt.text;
        std::fprintf(stderr, "panelhost: station %d, %s: %s\n", variable.station,
                     placeOf(variable).c_str(), reason.c_str());
        return std::max<int>(exitStatusOf(state.lastAttempt.kind), EXIT_SILENT);
    }
    const std::string text = textOf(variable, loop.value(variable));
    if (m_names.empty())
        printByReference(text, variable);
    else
        std::printf("%s = %s\n", variable.name.c_str(), text.c_str());
    return EXIT_GOOD;
}

// Prints as mbpoll does: the number of each value's first register.
void ReadCommand::printByReference(const std::string &text, const Variable &variable) const
{
    if (variable.format.type == Format::TEXT) {
        std::printf("[%d]: \t%s\n", m_what.reference(), text.c_str());
        return;
    }
    std::istringstream values(text);
    int reference = m_what.reference();
    for (std::string value; values >> value;
         reference += valueBits(variable.format) / REGISTER_BITS)
        std::printf("[%d]: \t%s\n", reference, value.c_str());
}

} // namespace velko
