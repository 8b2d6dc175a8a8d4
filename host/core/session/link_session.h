// A running link: polls and writes its variables on its own thread.
#pragma once

#include "host/core/events/event.h"
#include "host/core/line/line_tap.h"
#include "host/core/links/link.h"
#include "host/core/loop/communication_loop.h"
#include "host/core/loop/link_runner.h"
#include "host/core/plan/request_planner.h"
#include "host/core/session/snapshot.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace velko
{

/// Any thread may call. Calls of start(), stop(), prepare() and reload() must not overlap.
class LinkSession
{
public:
    /// Loads copies of the driver library file and plans the requests. `taps` and `sink` are the
    /// caller's and outlive the session; both are called on the communication thread and must not
    /// throw. Throws std::invalid_argument for a link that checkLink() refuses, std::runtime_error
    /// for a driver library file that cannot be used.
    LinkSession(const std::string &libraryFile, const Link &link,
                const std::vector<LineTap *> &taps, EventSink &sink);
    /// As stop().
    ~LinkSession() = default;
    LinkSession(const LinkSession &) = delete;
    LinkSession &operator=(const LinkSession &) = delete;

    /// Opens the port and starts the communication thread. May be called again, also after stop().
    /// With MissingPort::FAIL, throws PortError if the port cannot be opened; nothing runs then.
    void start(MissingPort missing = MissingPort::FAIL);

    /// Ends the communication thread after the exchange in progress. Reports queued writes as
    /// failed. Not from the communication thread.
    void stop();

    /// The first half of stop(): does not wait. With `cutsReads`, a read in progress ends within
    /// ReadCut::PATIENCE; the response to a write is awaited.
    void requestStop(bool cutsReads) { m_runner.requestStop(cutsReads); }
    /// True if the communication thread has ended.
    bool hasEnded() const { return m_runner.hasEnded(); }

    /// Halts the communication thread between two requests until resume(). Returns when it is there,
    /// after at most `limit` in any case.
    void pause(milliseconds limit) { m_runner.pause(limit); }
    void resume() { m_runner.resume(); }

    /// As LinkStatus::awaitedText.
    std::string awaitedText() const { return m_loop.status().awaitedText(); }

    /// Replaces the variables and the settings of the link. Its name must be the same. Queued
    /// writes and stored values are kept, unless the settings of the line change. Throws
    /// std::invalid_argument for a link that checkLink() refuses; nothing is changed then.
    void reload(const Link &link);

    /// The two halves of reload(), for several links that are to change together: only prepare()
    /// throws, and it changes nothing.
    struct Prepared {
        std::shared_ptr<const Link> link;
        std::vector<PlannedRequest> requests;
    };
    Prepared prepare(const Link &link);
    void apply(const Prepared &prepared);

    /// Queues a write of a variable. `text`: a value in the variable's format. Returns the number
    /// of the write, at least 1, which its events contain; the last of these events is its result.
    /// Returns 0 if there is no such variable. The events may come before this returns. A write that
    /// is given while the session is stopped is refused at the next start().
    int write(const std::string &variable, const std::string &text);

    /// Returns values and states; after stop(), those of the end. A value may be newer than its
    /// state, but not older.
    Snapshot snapshot() const;

    /// Number of completed cycles.
    std::int64_t cycles() const { return m_loop.status().cycles(); }

    /// True if the results of all writes are known.
    bool isIdle() const { return m_runner.isIdle(); }

    /// Returns the present settings and variables, never null.
    std::shared_ptr<const Link> link() const;

private:
    RequestPlanner m_planner; // used by the thread that prepares

    mutable std::mutex m_mutex; // guards the next two
    std::shared_ptr<const Link> m_link;
    int m_lastWrite = 0;

    CommunicationLoop m_loop;
    LinkRunner m_runner; // the last member: its thread ends before the others are destroyed
};

} // namespace velko
