// The communication loop of a link on its own thread, running as fast as it can.
#pragma once

#include "bench/bench_link.h"

#include <atomic>
#include <chrono>
#include <thread>

class BusyLoop
{
public:
    /// Starts the loop and returns when it runs. `link` has something to poll; it belongs to the
    /// caller and outlives this object.
    explicit BusyLoop(BenchLink &link);
    ~BusyLoop();
    BusyLoop(const BusyLoop &) = delete;
    BusyLoop &operator=(const BusyLoop &) = delete;

    long exchanges() const { return m_exchanges; }

    /// Returns when an exchange that was in progress at the call has ended.
    void awaitTurn() const;

    /// Returns the duration of the longest exchange since the last call, in seconds.
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
