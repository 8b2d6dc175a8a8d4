#include "host/commands/poll_command.h"

#include "host/commands/console.h"
#include "host/commands/exit_status.h"
#include "host/commands/number_options.h"
#include "host/core/line/line_times.h"
#include "host/core/links/link_file.h"
#include "host/core/sizes/limits.h"
#include "host/core/text/assignment.h"
#include "host/core/text/numbers.h"
#include "host/views/json_view.h"
#include "host/views/lines_view.h"
#include "host/views/live_table.h"

#include <QThread>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <set>

namespace velko
{

namespace
{

const int REFRESH = 100;      // milliseconds
const int SLOW_REFRESH = 250; // while no station is online
const milliseconds SILENT_END(150);

const char *const FOOTER =
    R"(Ends after --cycles or --seconds, whichever comes first, or at Ctrl-C. While it runs, a line
NAME=VALUE on standard input queues a write, and SIGHUP reads the file again: queued writes and stored
values are kept. The result of each write is reported: done, failed, superseded by a newer write of
the same variable, or refused.
Keys of the table on a terminal: arrows, Page Up, Page Down, Home and End scroll; / filters by name,
address or state, Esc clears the filter; Ctrl-U clears the line; Ctrl-Z stops the program between two
exchanges; Ctrl-D on an empty line ends it.)";

std::vector<std::string> namesOf(const std::vector<Link> &links)
{
    std::vector<std::string> names;
    names.reserve(links.size());
    for (const Link &link : links)
        names.push_back(link.name);
    return names;
}

bool isAnyOnline(const Snapshot &snapshot)
{
    return std::any_of(snapshot.links.begin(), snapshot.links.end(), [](const LinkRow &link) {
        return std::any_of(link.stations.begin(), link.stations.end(),
                           [](const StationStatus &status) { return status.isOnline; });
    });
}

// Exit status for a value that is not good.
int statusOf(const ValueState &state)
{
    const int status = exitStatusOf(state.lastAttempt.kind);
    return state.freshness == Freshness::NEVER_READ ? std::max<int>(status, EXIT_SILENT) : status;
}

// Exit status for the values at the end: the worst one.
int statusOf(const Snapshot &snapshot)
{
    int status = EXIT_GOOD;
    std::set<std::string> closed;
    for (const LinkRow &link : snapshot.links) {
        if (link.isOpen)
            continue;
        closed.insert(link.name);
        status = EXIT_PORT;
    }
    for (const ValueRow &row : snapshot.values) {
        const bool isGood = row.state.freshness == Freshness::GOOD || !row.variable.isRead();
        if (!isGood && closed.count(row.link) == 0)
            status = std::max(status, statusOf(row.state));
    }
    return status;
}

} // namespace

PollCommand::PollCommand(CLI::App &program)
    : Command(program, "poll", "Poll the variables of a file and show them"),
      m_talk(m_options)
{
    m_options.get_option("--pcap")->description("write each frame to a capture file for tshark, "
                                                "link type 147; with several links, one file "
                                                "per link: -NAME is inserted before the extension");
    m_options.add_option("file", m_file, "file of links and variables")->required();
    m_options.add_option("--device", m_device,
                         "serial port that replaces the one in the file; for a file with one link");
    m_options.add_option("--set", m_assignments, "write at the start; repeatable")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    m_options.add_option("--cycles", m_cycles, "end after each variable was read this many times")
        ->check(numberFrom(1, HIGHEST_CYCLES));
    m_options.add_option("--seconds", m_seconds, "end after this many seconds")
        ->type_name("SECONDS")
        ->check(secondsFrom(SHORTEST_RUN, LONGEST_RUN));
    m_options.add_flag("--fail-fast", m_isFailFast,
                       "end if a port is missing at the start; otherwise it is waited for");
    CLI::Option *const json = m_options.add_flag("--json", m_isJson, "print JSON lines");
    m_options
        .add_flag("--lines", m_isLines,
                  "print lines of text, also on a terminal: values whose state changes, changed "
                  "values at most once per second, and events")
        ->excludes(json);
    m_options
        .add_option(
            "--heartbeat", m_heartbeat,
            "with --json: repeat unchanged values and print the counters of the stations at "
            "least this often, in seconds")
        ->type_name("SECONDS")
        ->check(secondsFrom(SHORTEST_HEARTBEAT, LONGEST_HEARTBEAT))
        ->needs(json)
        ->capture_default_str();
    m_options.footer(FOOTER);
}

int PollCommand::run()
{
    const std::vector<Link> links = readFile();
    m_talk.begin(namesOf(links));
    PollSession session(m_talk.library(), links,
                        [this](const std::string &link) { return m_talk.taps(link); });
    Snapshot last;
    {
        const std::unique_ptr<PollView> view = makeView();
        loop(session, *view);
        view->leave();
        end(session);
        last = session.snapshot();
        passEvents(session, *view);
        view->finish(last);
    }
    m_talk.finish();
    return std::max(m_status, statusOf(last));
}

std::vector<Link> PollCommand::readFile() const
{
    std::vector<Link> links = readLinkFile(m_file);
    if (m_device.empty())
        return links;
    if (links.size() != 1)
        throw std::invalid_argument("--device: the file must have exactly one link");
    links.front().line.devices = {m_device};
    return links;
}

// Trace lines would break the table.
std::unique_ptr<PollView> PollCommand::makeView() const
{
    // A heartbeat that may be one refresh early is never late.
    if (m_isJson)
        return std::make_unique<JsonView>(milliseconds(millisecondsIn(m_heartbeat) - REFRESH));
    if (m_isLines || m_talk.isTraced() || ::isatty(STDOUT_FILENO) == 0)
        return std::make_unique<LinesView>();
    return std::make_unique<LiveTable>();
}

void PollCommand::loop(PollSession &session, PollView &view)
{
    // Before the threads of the links, which must not receive its signals.
    Console console(Console::STOPS_WAIT);
    session.start(m_isFailFast ? MissingPort::FAIL : MissingPort::WAIT);
    for (const std::string &assignment : m_assignments)
        write(assignment, session, view);
    const Clock::time_point end = m_seconds.empty()
                                      ? Clock::time_point::max()
                                      : Clock::now() + milliseconds(millisecondsIn(m_seconds));
    int refresh = REFRESH;
    while (Clock::now() < end && !isOver(session)) {
        const Console::Input input =
            console.wait(std::min(refresh, m_seconds.empty() ? refresh : millisecondsUntil(end)),
                         view.takesKeys());
        if (!handle(input, session, view)) {
            m_isInterrupted = true;
            return;
        }
        passEvents(session, view);
        const Snapshot snapshot = session.snapshot();
        view.show(snapshot);
        refresh = isAnyOnline(snapshot) ? REFRESH : SLOW_REFRESH;
    }
}

// Says what the end waits for, unless it comes at once.
void PollCommand::end(PollSession &session) const
{
    session.requestStop(m_isInterrupted);
    const Clock::time_point soon = Clock::now() + SILENT_END;
    while (!session.awaited().empty() && Clock::now() < soon)
        QThread::msleep(5);
    for (const std::string &text : session.awaited())
        std::fprintf(stderr, "panelhost: link %s; press Ctrl-C to end at once\n", text.c_str());
    session.stop();
}

// False if the input ends the program. Lines that came with its end are writes like all others.
bool PollCommand::handle(const Console::Input &input, PollSession &session, PollView &view)
{
    const PollView::Typed typed = view.type(input.keys);
    const bool isEnd = input.isEnd || typed.isEnd;
    if (input.isStop && !isEnd)
        stopProcess(session, view);
    if (input.isContinued)
        view.resume();
    if (input.isReload)
        reload(session, view);
    for (const std::vector<std::string> &lines : {input.lines, typed.lines})
        for (const std::string &line : lines)
            write(line, session, view);
    return !isEnd;
}

// The time until the process is continued must not count as a response time.
void PollCommand::stopProcess(PollSession &session, PollView &view)
{
    session.pause();
    view.suspend();
    Console::stop();
    view.resume();
    session.resume();
}

bool PollCommand::isOver(const PollSession &session) const
{
    if (std::ferror(stdout) != 0)
        return true; // the reader of the output has ended
    return m_cycles > 0 && session.haveCycled(m_cycles) && session.isIdle();
}

// An error in the new file does not stop the links.
void PollCommand::reload(PollSession &session, PollView &view) const
{
    try {
        session.reload(readFile());
        view.note("the file was read again");
    } catch (const std::exception &error) {
        view.note(std::string("the file was not applied: ") + error.what());
    }
}

void PollCommand::write(const std::string &assignment, PollSession &session, PollView &view)
{
    const std::optional<Assignment> order = parseAssignment(assignment);
    std::string refusal;
    if (!order)
        refusal = "\"" + assignment + "\" is not NAME=VALUE";
    else if (!session.write(order->name, order->value))
        refusal = "there is no variable \"" + order->name + "\"";
    if (refusal.empty())
        return;
    view.note(assignment + ": refused: " + refusal);
    noteStatus(EXIT_REFUSED);
}

void PollCommand::passEvents(PollSession &session, PollView &view)
{
    for (const Event &event : session.takeEvents()) {
        view.report(event);
        if (kindOf(event.state) == Event::WRITE)
            noteStatus(exitStatusOf(event));
    }
}

void PollCommand::noteStatus(int status)
{
    m_status = std::max(m_status, status);
}

} // namespace velko
