// The communication loop of a link, on a thread of its own, as fast as it can.
#pragma once

#include "bench/bench_link.h"

#include <atomic>
#include <chrono>
#include <thread>

class BusyLoop
{
public:
    /// `link` polls something; it is the caller's and outlives this. Returns when the loop runs.
    explicit BusyLoop(BenchLink &link);
    ~BusyLoop();
    BusyLoop(const BusyLoop &) = delete;
    BusyLoop &operator=(const BusyLoop &) = delete;

    long exchanges() const { return m_exchanges; }

    /// Returns when an exchange that was under way at the call has ended.
    void awaitTurn() const;

    /// The longest time, in seconds, that one exchange took since the last call.
    double takeLongest();

private:
    using Clock = std::chrono::steady_clock;

    void run();

    BenchLink &m_link;
    std::atomic<bool> m_stop{false};
    std::atomic<long> m_exchanges{0};
    std::atomic<long> m_longest{0}; // nanoseconds
    std::thread m_thread;
};
