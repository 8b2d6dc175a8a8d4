#include "host/core/session/poll_session.h"

#include <algorithm>

namespace velko
{

namespace
{

ValueRow rowOf(const Variable &variable, const CommunicationLoop &loop)
{
    // The state first: the value may be newer than its state, never older.
    const ValueState state = loop.status().stateOf(variable);
    return {variable, state.age ? textOf(variable, loop.value(variable)) : "-", state};
}

} // namespace

PollSession::PollSession(const std::string &library, const std::vector<Link> &links,
                         const std::vector<LineTap *> &taps)
    : m_planner(library)
{
    for (const Link &link : links) {
        Running running;
        running.link = link;
        running.loop =
            std::make_unique<CommunicationLoop>(library, link, m_planner.plan(link), taps, *this);
        running.runner = std::make_unique<LinkRunner>(*running.loop);
        m_links.push_back(std::move(running));
    }
}

void PollSession::start()
{
    for (const Running &running : m_links)
        running.runner->start();
}

void PollSession::stop()
{
    for (const Running &running : m_links)
        running.runner->stop();
}

void PollSession::reload(const std::vector<Link> &links)
{
    const auto isSameLink = [](const Running &running, const Link &link) {
        return running.link.name == link.name;
    };
    if (!std::equal(m_links.begin(), m_links.end(), links.begin(), links.end(), isSameLink))
        throw std::runtime_error("other links than before; end the program and start it anew");
    for (size_t i = 0; i < links.size(); ++i) {
        const Link &link = links[i];
        const std::vector<PlannedRequest> plan = m_planner.plan(link);
        m_links[i].link = link;
        m_links[i].runner->post([link, plan](CommunicationLoop &loop) { loop.load(link, plan); });
    }
}

std::string PollSession::write(const std::string &assignment)
{
    const size_t place = assignment.find('=');
    if (place == std::string::npos)
        return "\"" + assignment + "\" is not NAME=VALUE";
    const std::string name = assignment.substr(0, place);
    const std::string text = assignment.substr(place + 1);
    for (const Running &running : m_links) {
        for (const Variable &variable : running.link.variables) {
            if (variable.name != name)
                continue;
            running.runner->post(
                [variable, text](CommunicationLoop &loop) { loop.write(variable, text); });
            return std::string();
        }
    }
    return "there is no variable \"" + name + "\"";
}

bool PollSession::haveCycled(int times) const
{
    return std::all_of(m_links.begin(), m_links.end(), [times](const Running &running) {
        const std::vector<Variable> &variables = running.link.variables;
        const bool isRead = std::any_of(variables.begin(), variables.end(),
                                        [](const Variable &variable) { return variable.isRead(); });
        return !isRead || running.loop->status().cycles() >= times;
    });
}

bool PollSession::isIdle() const
{
    return std::all_of(m_links.begin(), m_links.end(),
                       [](const Running &running) { return running.runner->isIdle(); });
}

Snapshot PollSession::snapshot() const
{
    Snapshot snapshot;
    for (const Running &running : m_links) {
        const LinkStatus &status = running.loop->status();
        snapshot.links.push_back({running.link.name, status.portText(), status.isPortOpen(),
                                  status.cycles(), status.stations()});
        for (const Variable &variable : running.link.variables)
            snapshot.values.push_back(rowOf(variable, *running.loop));
    }
    return snapshot;
}

std::vector<Event> PollSession::takeEvents()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<Event> events;
    events.swap(m_events);
    return events;
}

void PollSession::tell(const Event &event)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_events.push_back(event);
}

} // namespace velko
