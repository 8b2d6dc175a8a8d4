// The links of a file and their events.
#pragma once

#include "host/core/events/event.h"
#include "host/core/line/line_tap.h"
#include "host/core/links/link.h"
#include "host/core/session/link_session.h"
#include "host/core/session/snapshot.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace velko
{

/// Returns the taps of a link.
using TapsOfLink = std::function<std::vector<LineTap *>(const std::string &link)>;

/// Any thread may call. Calls of start(), stop() and reload() must not overlap.
class PollSession : public EventSink
{
public:
    /// `links` have different names. `tapsOf` is called once for each link; the taps are the
    /// caller's and outlive the session. Throws std::runtime_error.
    PollSession(const std::string &libraryFile, const std::vector<Link> &links,
                const TapsOfLink &tapsOf);

    /// Starts every link. `missing`: as for LinkSession::start. Throws PortError.
    void start(MissingPort missing);

    /// Stops every link. takeEvents() returns the last events afterwards.
    void stop();
    /// As LinkSession::requestStop, for all links.
    void requestStop(bool cutsReads);
    /// Returns, for each link whose thread has not ended, what it waits for, for example "packing
    /// waits for station 3 to answer a read".
    std::vector<std::string> awaited() const;

    /// As LinkSession::pause and LinkSession::resume, for all links, so that the process can be
    /// stopped.
    void pause();
    void resume();

    /// Replaces the variables and settings of all links. Throws std::runtime_error if the links are not
    /// the same as before, std::invalid_argument if one of them is refused; nothing is changed then.
    void reload(const std::vector<Link> &links);

    /// Queues a write of a variable of any link; its result is an event. False if no link has such a
    /// variable.
    bool write(const std::string &variable, const std::string &text);

    /// True if every link that has variables to read has completed at least `times` cycles.
    bool haveCycled(int times) const;
    /// True if the results of all writes are known.
    bool isIdle() const;

    /// Returns the values and states of all links.
    Snapshot snapshot() const;
    /// Returns the events since the last call, oldest first.
    std::vector<Event> takeEvents();

    /// Called by the links, on their communication threads.
    void receive(const Event &event) override;

private:
    std::mutex m_mutex; // guards m_events
    std::vector<Event> m_events;
    std::vector<std::unique_ptr<LinkSession>> m_links;
};

} // namespace velko
