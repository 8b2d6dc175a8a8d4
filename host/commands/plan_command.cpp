#include "host/commands/plan_command.h"

#include "host/commands/exit_status.h"
#include "host/commands/talk_options.h"
#include "host/core/links/link_file.h"
#include "host/views/plan_report.h"

#include <cstdio>

namespace velko
{

PlanCommand::PlanCommand(CLI::App &program)
    : Command(
        program, "plan",
        "Shows which requests the variables of a file become and what they cost; sends nothing."),
      m_library(driverFile())
{
    m_options.add_option("file", m_file, "file of links and variables")->required();
    m_options.add_option("--library", m_library, "the driver's file")->capture_default_str();
    m_options.footer(
        "\nasked: registers in the request; wanted: those that a variable needs; gap: the "
        "others.\nbytes: request and reply; ms: their time on the wire.\n");
}

int PlanCommand::run()
{
    const std::vector<Link> links = readLinkFile(m_file);
    RequestPlanner planner(m_library);
    for (const Link &link : links) {
        std::printf("Link %s:\n", link.name.c_str());
        for (const std::string &line : planReport(link, planner.plan(link)))
            std::printf("  %s\n", line.c_str());
    }
    return EXIT_GOOD;
}

} // namespace velko
