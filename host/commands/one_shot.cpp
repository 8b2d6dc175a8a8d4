#include "host/commands/one_shot.h"

#include "host/commands/exit_status.h"
#include "host/commands/number_options.h"
#include "host/core/line/port_error.h"
#include "host/core/plan/request_planner.h"
#include "host/core/sizes/limits.h"

#include <cstdio>

namespace velko
{

namespace
{

// Accepts mbpoll's names of 32-bit numbers as well.
std::string formatNamed(const std::string &name, bool isBigEndian)
{
    const std::string order = isBigEndian ? "/ABCD" : "/CDAB";
    if (name == "int")
        return "s32" + order;
    if (name == "float")
        return "f32" + order;
    const bool isWide = name == "u32" || name == "s32" || name == "f32";
    return isWide ? name + order : name;
}

std::vector<PlannedRequest> planOf(const std::string &library, const Link &link)
{
    RequestPlanner planner(library);
    std::vector<PlannedRequest> requests;
    for (const Variable &variable : link.variables) {
        Link single = link;
        single.variables = {variable};
        for (const PlannedRequest &request : planner.plan(single))
            requests.push_back(request);
    }
    return requests;
}

} // namespace

OneShotOptions::OneShotOptions(CLI::App &options) : m_options(options)
{
    options
        .add_option(
            "-t,--type", m_type,
            "3 (input registers) or 4 (holding registers); :hex, :int, :float or a FORMAT from "
            "below may follow")
        ->capture_default_str();
    options
        .add_option("-r,--reference", m_reference, "number of the first register, counted from 1")
        ->check(numberFrom(0, HIGHEST_REGISTER + 1))
        ->capture_default_str();
    options.add_flag("-0", m_isFromZero, "-r is a register address, counted from 0");
    options.add_flag("-B", m_isBigEndian, "word order of 32-bit numbers: high word first");
}

bool OneShotOptions::isByReference() const
{
    return m_options.count("-t") > 0 || m_options.count("-r") > 0 || m_options.count("-0") > 0;
}

Variable OneShotOptions::byReference(int station, int count, Access access) const
{
    const size_t colon = m_type.find(':');
    const std::string table = m_type.substr(0, colon);
    if (table == "0" || table == "1")
        throw std::invalid_argument(
            "-t " + m_type
            + ": coils and discrete inputs (functions 1, 2, 5 and 15) are not sent. If the PLC "
              "maps them to registers, name a bit of a register, for example holding-bit:3.5.");
    if (table != "3" && table != "4")
        throw std::invalid_argument("-t " + m_type + ": the type must begin with 3 or 4");
    if (m_reference == 0 && !m_isFromZero)
        throw std::invalid_argument(
            "-r 0: register numbers start at 1. Add -0 for register addresses, "
            "which start at 0.");
    Variable variable;
    variable.station = station;
    variable.kind = table == "3" ? KIND_INPUT_WORD : KIND_HOLDING_WORD;
    variable.address = std::to_string(m_isFromZero ? m_reference : m_reference - 1);
    const std::string format = colon == std::string::npos ? "u16" : m_type.substr(colon + 1);
    variable.format = parseFormat(formatNamed(format, m_isBigEndian));
    variable.count = count;
    variable.access = access;
    checkVariable(variable);
    return variable;
}

OneShotLoop::OneShotLoop(const TalkOptions &talk, const Link &link)
    : m_loop(talk.library(), link, planOf(talk.library(), link), talk.taps(), *this),
      m_interruption(m_loop)
{
    m_loop.open();
}

// Both loops always end, because each request is given up after its retries.
void OneShotLoop::readAll()
{
    const std::int64_t before = m_loop.status().cycles();
    while (m_loop.status().cycles() == before && !m_interruption.isRequested() && turn()) {
    }
}

int OneShotLoop::write(const Variable &variable, const std::string &text)
{
    m_loop.write({variable, text});
    while (m_loop.hasPendingWrites() && !m_interruption.isRequested())
        turn();
    if (m_loop.hasPendingWrites())
        m_loop.close("it was interrupted");
    if (m_lastWrite.state == Event::WRITE_DONE)
        return EXIT_GOOD;
    std::fprintf(stderr, "panelhost: %s = %s: %s: %s\n", variable.name.c_str(), text.c_str(),
                 nameOf(m_lastWrite.state), m_lastWrite.detail.c_str());
    return exitStatusOf(m_lastWrite);
}

// False if there is no request: all stations are offline.
bool OneShotLoop::turn()
{
    const bool hasRequest = m_loop.turn();
    if (!m_loop.isOpen())
        throw PortError(m_portError);
    return hasRequest;
}

void OneShotLoop::receive(const Event &event)
{
    if (kindOf(event.state) == Event::WRITE)
        m_lastWrite = event;
    if (event.state == Event::PORT_LOST)
        m_portError = event.detail;
}

} // namespace velko
