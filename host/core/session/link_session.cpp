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
    return snapshotOf(*link(), m_loop);
}

std::shared_ptr<const Link> LinkSession::link() const
{
    const Lock lock(m_mutex);
    return m_link;
}

} // namespace velko
