// One link that runs: its variables are kept up to date and written, on a thread of its own.
#pragma once

#include "host/core/events/event.h"
#include "host/core/line/line_tap.h"
#include "host/core/links/link.h"
#include "host/core/loop/communication_loop.h"
#include "host/core/loop/link_runner.h"
#include "host/core/session/snapshot.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace velko
{

/// The top of this library. Any thread may call; start(), stop() and reload() one at a time.
class LinkSession
{
public:
    /// Loads copies of the driver library file and plans the requests. `taps` and `sink` are the
    /// caller's and outlive the session; both are called on the communication thread. Throws
    /// std::runtime_error.
    LinkSession(const std::string &libraryFile, const Link &link,
                const std::vector<LineTap *> &taps, EventSink &sink);
    /// Stops.
    ~LinkSession() = default;
    LinkSession(const LinkSession &) = delete;
    LinkSession &operator=(const LinkSession &) = delete;

    /// Opens the port and starts the communication thread. Throws PortError.
    void start();

    /// Ends after the exchange in progress. Reports queued writes as failed.
    void stop();

    /// Replaces the variables and the settings of the link, whose name stays. Queued writes and stored
    /// values stay, unless the port's settings change. Throws std::runtime_error with nothing changed.
    void reload(const Link &link);

    /// Writes a variable; `text` is a value in the variable's format. Returns the number of the write,
    /// 1 or more: its events carry it, and the last of them is its result. 0 if there is no such
    /// variable.
    int write(const std::string &variable, const std::string &text);

    /// Values and states. A value may be newer than its state, never older.
    Snapshot snapshot() const;

    /// Completed cycles of the cyclic requests.
    std::int64_t cycles() const { return m_loop.status().cycles(); }

    /// The results of all writes are known.
    bool isIdle() const { return m_runner.isIdle(); }

    /// Settings and variables as they were given last.
    std::shared_ptr<const Link> link() const;

private:
    const std::string m_libraryFile;
    CommunicationLoop m_loop;
    LinkRunner m_runner; // stops before the loop goes

    mutable std::mutex m_mutex; // guards all below
    std::shared_ptr<const Link> m_link;
    int m_lastWrite = 0;
};

} // namespace velko
