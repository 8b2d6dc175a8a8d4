#include "host/commands/write_command.h"

#include "host/commands/exit_status.h"
#include "host/commands/help_texts.h"
#include "host/core/sizes/units.h"
#include "host/core/text/assignment.h"
#include "host/core/variables/formats.h"
#include "host/core/variables/kinds.h"

#include <algorithm>
#include <cstdio>

namespace velko
{

namespace
{

// Printed before the write, so that a user sees a wrong address in time.
void printTarget(const Variable &variable, const std::string &text)
{
    const RegisterSpan span = registersOf(variable);
    const int first = span.first + wireOffset(span.area);
    const int last = span.last + wireOffset(span.area);
    const std::string registers = first == last ? "register address " + std::to_string(first)
                                                : "register addresses " + std::to_string(first)
                                                      + " to " + std::to_string(last);
    const char *const part = unitBits(variable.kind) < REGISTER_BITS
                                 ? " (a part of the register; the rest is kept)"
                                 : "";
    std::printf("station %d, %s%s: %s\n", variable.station, registers.c_str(), part, text.c_str());
    std::fflush(stdout);
}

} // namespace

WriteCommand::WriteCommand(CLI::App &program)
    : Command(program, "write",
              "Write variables once; print each register address before it is written"),
      m_line(m_options),
      m_what(m_options),
      m_talk(m_options)
{
    m_options
        .add_option(
            "values", m_values,
            "VARIABLE=VALUE, see below, in quotes if it contains spaces; with -t or -r only "
            "values, negative ones after --")
        ->required();
    m_options.footer(
        variablesHelp()
        + "Only function 16 writes. A write of a bit or a byte reads the register with "
          "function 3 and writes the whole\nregister back: what the PLC changes in "
          "that register between the two is lost.\n"
          "\nExamples:\n"
          "  panelhost write /dev/ttyUSB0 -a 3 7:100=250 1:3.5=1\n"
          "  panelhost write /dev/ttyUSB0 -a 3 -r 101 -t 4:float -B -- -12.5\n");
}

int WriteCommand::run()
{
    const std::vector<Write> todo = writes();
    Link link = m_line.link();
    for (const Write &write : todo)
        link.variables.push_back(write.variable);
    if (!areValues(todo)) // before the first write is sent
        return EXIT_REFUSED;
    m_talk.begin();
    OneShotLoop once(m_talk, link);
    int status = EXIT_GOOD;
    for (const Write &write : todo) {
        if (once.interruption().isRequested()) {
            std::fprintf(stderr, "panelhost: %s: not sent: it was interrupted\n",
                         write.variable.name.c_str());
            continue;
        }
        printTarget(write.variable, write.text);
        status = std::max(status, once.write(write.variable, write.text));
    }
    m_talk.finish();
    return status;
}

bool WriteCommand::areValues(const std::vector<Write> &todo)
{
    for (const Write &write : todo) {
        try {
            valueOf(write.variable, write.text);
        } catch (const std::invalid_argument &error) {
            std::fprintf(stderr, "panelhost: %s: refused: %s\n", write.variable.name.c_str(),
                         error.what());
            return false;
        }
    }
    return true;
}

std::vector<WriteCommand::Write> WriteCommand::writes() const
{
    std::vector<Write> writes;
    if (m_what.isByReference()) {
        std::string text;
        for (const std::string &value : m_values)
            text += (text.empty() ? "" : " ") + value;
        Variable variable = m_what.byReference(m_line.station(), 1, Access::WRITE);
        const bool isText = variable.format.type == Format::TEXT;
        const size_t count = isText ? charactersIn(text) : m_values.size();
        variable = m_what.byReference(m_line.station(), static_cast<int>(count), Access::WRITE);
        variable.name = placeOf(variable);
        return {{variable, text}};
    }
    for (const std::string &value : m_values) {
        const std::optional<Assignment> order = parseAssignment(value);
        if (!order)
            throw std::invalid_argument(
                "\"" + value
                + "\" is not VARIABLE=VALUE. Add -r for values without a variable. Put quotes "
                  "around a write that contains spaces.");
        writes.push_back(
            {parseVariable(order->name, m_line.station(), Access::WRITE), order->value});
    }
    return writes;
}

} // namespace velko
