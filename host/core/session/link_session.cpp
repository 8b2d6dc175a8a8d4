#include "host/core/session/link_session.h"

#include "host/core/links/link_check.h"

#include <algorithm>

namespace velko
{

using Lock = std::lock_guard<std::mutex>;

namespace
{

const Link &checked(const Link &link)
{
    checkLink(link);
    return link;
}

// The value must not be older than its state. And the store shows a write before the PLC has it: if
// one has begun meanwhile, the later state counts.
ValueRow rowOf(const std::string &link, const Variable &variable, const CommunicationLoop &loop)
{
    ValueState state = loop.status().stateOf(variable);
    const std::string text = state.age ? textOf(variable, loop.value(variable)) : "-";
    const ValueState later = loop.status().stateOf(variable);
    if (later.freshness != Freshness::GOOD)
        state = later;
    return {link, variable, text, state};
}

} // namespace

LinkSession::LinkSession(const std::string &libraryFile, const Link &link,
                         const std::vector<LineTap *> &taps, EventSink &sink)
    : m_planner(libraryFile),
      m_link(std::make_shared<const Link>(checked(link))),
      m_loop(libraryFile, link, m_planner.plan(link), taps, sink),
      m_runner(m_loop)
{
}

void LinkSession::start(MissingPort missing)
{
    m_runner.start(missing);
}

void LinkSession::stop()
{
    m_runner.stop();
}

void LinkSession::reload(const Link &link)
{
    apply(prepare(link));
}

LinkSession::Prepared LinkSession::prepare(const Link &link)
{
    return {std::make_shared<const Link>(checked(link)), m_planner.plan(link)};
}

void LinkSession::apply(const Prepared &prepared)
{
    const Lock lock(m_mutex); // later writes use the new variables
    m_link = prepared.link;
    m_runner.post(
        [prepared](CommunicationLoop &loop) { loop.load(*prepared.link, prepared.requests); });
}

int LinkSession::write(const std::string &variable, const std::string &text)
{
    const Lock lock(m_mutex);
    const std::vector<Variable> &variables = m_link->variables;
    const auto place =
        std::find_if(variables.begin(), variables.end(),
                     [&](const Variable &candidate) { return candidate.name == variable; });
    if (place == variables.end())
        return 0;
    const WriteOrder order{*place, text, ++m_lastWrite};
    m_runner.post([order](CommunicationLoop &loop) { loop.write(order); });
    return order.number;
}

Snapshot LinkSession::snapshot() const
{
    const std::shared_ptr<const Link> shown = link();
    const LinkStatus &status = m_loop.status();
    Snapshot snapshot;
    snapshot.links.push_back(
        {shown->name, status.portText(), status.isPortOpen(), status.cycles(), status.stations()});
    snapshot.values.reserve(shown->variables.size());
    for (const Variable &variable : shown->variables)
        snapshot.values.push_back(rowOf(shown->name, variable, m_loop));
    return snapshot;
}

std::shared_ptr<const Link> LinkSession::link() const
{
    const Lock lock(m_mutex);
    return m_link;
}

} // namespace velko
