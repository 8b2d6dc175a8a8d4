// Links that run, and what they report: gathered for a view on the main thread.
#pragma once

#include "host/core/links/link_file.h"
#include "host/core/session/link_runner.h"
#include "host/core/session/snapshot.h"

namespace velko
{

class PollSession : public EventSink
{
public:
    /// `taps` are the caller's and outlive the session. Throws std::runtime_error.
    PollSession(const std::string &library, const std::vector<Link> &links,
                const std::vector<LineTap *> &taps);

    /// Throws PortError.
    void start();

    /// Afterwards takeEvents has the last events.
    void stop();

    /// Other variables and settings for the same links. Throws std::runtime_error, with nothing
    /// changed.
    void reload(const std::vector<Link> &links);

    /// "NAME=VALUE". Its fate comes as an event, or is returned here: a name that no variable has.
    std::string write(const std::string &assignment);

    /// Every link has been through its list so often.
    bool haveCycled(int times) const;
    /// No write is under way.
    bool isIdle() const;

    Snapshot snapshot() const;
    std::vector<Event> takeEvents();

    void tell(const Event &event) override;

private:
    struct Running {
        Link link;
        std::unique_ptr<CommunicationLoop> loop;
        std::unique_ptr<LinkRunner> runner; // stops before its loop goes
    };

    RequestPlanner m_planner;
    std::mutex m_mutex; // guards m_events
    std::vector<Event> m_events;
    std::vector<Running> m_links;
};

} // namespace velko
