#include "host/core/session/poll_session.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace velko
{

namespace
{

bool isRead(const Link &link)
{
    return std::any_of(link.variables.begin(), link.variables.end(),
                       [](const Variable &variable) { return variable.isRead(); });
}

template <typename Rows> void append(Rows &rows, Rows &&more)
{
    rows.insert(rows.end(), std::make_move_iterator(more.begin()),
                std::make_move_iterator(more.end()));
}

} // namespace

PollSession::PollSession(const std::string &libraryFile, const std::vector<Link> &links,
                         const std::vector<LineTap *> &taps)
{
    for (const Link &link : links)
        m_links.push_back(std::make_unique<LinkSession>(libraryFile, link, taps, *this));
}

void PollSession::start()
{
    for (const auto &link : m_links)
        link->start();
}

void PollSession::stop()
{
    for (const auto &link : m_links)
        link->stop();
}

void PollSession::reload(const std::vector<Link> &links)
{
    const auto isSameLink = [](const std::unique_ptr<LinkSession> &session, const Link &link) {
        return session->link()->name == link.name;
    };
    if (!std::equal(m_links.begin(), m_links.end(), links.begin(), links.end(), isSameLink))
        throw std::runtime_error(
            "its links are not the same as before; end the program and start it "
            "again");
    for (size_t i = 0; i < links.size(); ++i)
        m_links[i]->reload(links[i]);
}

std::string PollSession::write(const std::string &assignment)
{
    const size_t place = assignment.find('=');
    if (place == std::string::npos)
        return "\"" + assignment + "\" is not NAME=VALUE";
    const std::string name = assignment.substr(0, place);
    const std::string text = assignment.substr(place + 1);
    const bool isTaken = std::any_of(m_links.begin(), m_links.end(),
                                     [&](const auto &link) { return link->write(name, text) > 0; });
    return isTaken ? std::string() : "there is no variable \"" + name + "\"";
}

bool PollSession::haveCycled(int times) const
{
    return std::all_of(m_links.begin(), m_links.end(), [times](const auto &link) {
        return !isRead(*link->link()) || link->cycles() >= times;
    });
}

bool PollSession::isIdle() const
{
    return std::all_of(m_links.begin(), m_links.end(),
                       [](const auto &link) { return link->isIdle(); });
}

Snapshot PollSession::snapshot() const
{
    Snapshot all;
    for (const auto &link : m_links) {
        Snapshot one = link->snapshot();
        append(all.links, std::move(one.links));
        append(all.values, std::move(one.values));
    }
    return all;
}

std::vector<Event> PollSession::takeEvents()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<Event> events;
    events.swap(m_events);
    return events;
}

void PollSession::receive(const Event &event)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_events.push_back(event);
}

} // namespace velko
