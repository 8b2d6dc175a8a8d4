#include "host/commands/plan_command.h"

#include "host/commands/exit_status.h"
#include "host/commands/talk_options.h"
#include "host/core/links/link_file.h"
#include "host/views/plan_report.h"

#include <cstdio>

namespace velko
{

PlanCommand::PlanCommand(CLI::App &program)
    : Command(program, "plan",
              "Show the requests for the variables of a file and their cost, without sending them"),
      m_library(driverFile())
{
    m_options.add_option("file", m_file, "file of links and variables")->required();
    m_options.add_option("--library", m_library, "driver library file")
        ->type_name("FILE")
        ->capture_default_str();
    m_options.add_flag("--json", m_isJson, "print JSON lines");
    m_options.footer(
        "asked: registers of the request; wanted: registers that a variable needs; gap: gap "
        "registers, "
        "the other ones.\nbytes: of request and response; ms: their time on the line.\n");
}

int PlanCommand::run()
{
    const std::vector<Link> links = readLinkFile(m_file);
    RequestPlanner planner(m_library);
    for (const Link &link : links) {
        const std::vector<PlannedRequest> plan = planner.plan(link);
        if (!m_isJson)
            std::printf("Link %s:\n", link.name.c_str());
        for (const std::string &line : m_isJson ? planJson(link, plan) : planReport(link, plan))
            std::printf("%s%s\n", m_isJson ? "" : "  ", line.c_str());
    }
    return EXIT_GOOD;
}

} // namespace velko
