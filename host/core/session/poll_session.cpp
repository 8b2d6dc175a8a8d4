#include "host/core/session/poll_session.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace velko
{

namespace
{

// A user who presses Ctrl-Z does not wait longer for a station that is silent.
const milliseconds LONGEST_PAUSE(2000);

bool isRead(const Link &link)
{
    return std::any_of(link.variables.begin(), link.variables.end(),
                       [](const Variable &variable) { return variable.isRead(); });
}

template <typename Rows> void append(Rows &rows, Rows &&more)
{
    if (rows.empty()) // the usual case, one link, needs no copy
        rows.swap(more);
    rows.insert(rows.end(), std::make_move_iterator(more.begin()),
                std::make_move_iterator(more.end()));
}

} // namespace

PollSession::PollSession(const std::string &libraryFile, const std::vector<Link> &links,
                         const TapsOfLink &tapsOf)
{
    for (const Link &link : links)
        m_links.push_back(
            std::make_unique<LinkSession>(libraryFile, link, tapsOf(link.name), *this));
}

void PollSession::start(MissingPort missing)
{
    for (const auto &link : m_links)
        link->start(missing);
}

void PollSession::requestStop(bool cutsReads)
{
    for (const auto &link : m_links)
        link->requestStop(cutsReads);
}

std::vector<std::string> PollSession::awaited() const
{
    std::vector<std::string> texts;
    for (const auto &link : m_links) {
        const std::string text = link->awaitedText();
        if (!link->hasEnded() && !text.empty())
            texts.push_back(link->link()->name + " waits for " + text);
    }
    return texts;
}

void PollSession::pause()
{
    for (const milliseconds limit : {milliseconds(0), LONGEST_PAUSE}) // all at the same time
        for (const auto &link : m_links)
            link->pause(limit);
}

void PollSession::resume()
{
    for (const auto &link : m_links)
        link->resume();
}

void PollSession::stop()
{
    requestStop(false); // so that the links end at the same time
    for (const auto &link : m_links)
        link->stop();
}

void PollSession::reload(const std::vector<Link> &links)
{
    const auto isSameLink = [](const std::unique_ptr<LinkSession> &session, const Link &link) {
        return session->link()->name == link.name;
    };
    if (!std::equal(m_links.begin(), m_links.end(), links.begin(), links.end(), isSameLink))
        throw std::runtime_error("its links are not the same as before");
    std::vector<LinkSession::Prepared> prepared;
    prepared.reserve(links.size());
    for (size_t i = 0; i < links.size(); ++i)
        prepared.push_back(m_links[i]->prepare(links[i]));
    for (size_t i = 0; i < links.size(); ++i)
        m_links[i]->apply(prepared[i]);
}

bool PollSession::write(const std::string &variable, const std::string &text)
{
    return std::any_of(m_links.begin(), m_links.end(),
                       [&](const auto &link) { return link->write(variable, text) > 0; });
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
