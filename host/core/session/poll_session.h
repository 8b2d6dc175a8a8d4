// The links of a file, and their events gathered for one reader.
#pragma once

#include "host/core/events/event.h"
#include "host/core/line/line_tap.h"
#include "host/core/links/link.h"
#include "host/core/session/link_session.h"
#include "host/core/session/snapshot.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace velko
{

/// Any thread may call; start(), stop() and reload() one at a time.
class PollSession : public EventSink
{
public:
    /// `taps` are the caller's and outlive the session. Throws std::runtime_error.
    PollSession(const std::string &libraryFile, const std::vector<Link> &links,
                const std::vector<LineTap *> &taps);

    /// Throws PortError.
    void start();

    /// Afterwards takeEvents() has the last events.
    void stop();

    /// Replaces the variables and settings of the same links. Throws std::runtime_error with nothing
    /// changed if the links are not the same.
    void reload(const std::vector<Link> &links);

    /// "NAME=VALUE". Returns why it is refused; otherwise an empty text, and the result comes as an
    /// event.
    std::string write(const std::string &assignment);

    /// Every link that is read has completed at least `times` cycles.
    bool haveCycled(int times) const;
    /// The results of all writes are known.
    bool isIdle() const;

    Snapshot snapshot() const;
    /// Events since the last call, oldest first.
    std::vector<Event> takeEvents();

    /// Of the links, on their threads.
    void receive(const Event &event) override;

private:
    std::mutex m_mutex; // guards m_events
    std::vector<Event> m_events;
    std::vector<std::unique_ptr<LinkSession>> m_links;
};

} // namespace velko
