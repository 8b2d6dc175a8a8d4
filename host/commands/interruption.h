// Ctrl-C while a loop runs on the thread of the program.
#pragma once

#include "host/commands/signals.h"
#include "host/core/line/line_times.h"
#include "host/core/loop/communication_loop.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace velko
{

/// At the first SIGINT or SIGTERM, a read in progress is cut, and a message says what is awaited. A
/// second signal ends the program at once.
class Interruption
{
public:
    /// `loop` is the caller's and outlives this object. Throws std::runtime_error.
    explicit Interruption(CommunicationLoop &loop);
    ~Interruption();
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

    /// True after the first signal.
    bool isRequested() const;

    /// Waits until then, or until the time has passed.
    void wait(milliseconds time);

private:
    void watch();
    void take(int number);

    CommunicationLoop &m_loop;
    const Signals m_signals;
    int m_end; // becomes readable at the end

    mutable std::mutex m_mutex; // guards the next three
    std::condition_variable m_changed;
    bool m_isRequested = false;
    bool m_isOver = false;

    std::thread m_thread; // the last member: it uses the others
};

} // namespace velko
