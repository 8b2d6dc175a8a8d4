#include "bench/busy_loop.h"

BusyLoop::BusyLoop(BenchLink &link) : m_link(link), m_thread(&BusyLoop::run, this)
{
    awaitTurn();
}

BusyLoop::~BusyLoop()
{
    m_stop = true;
    m_thread.join();
}

void BusyLoop::awaitTurn() const
{
    const long before = m_exchanges;
    while (m_exchanges < before + 2) // ends, because the loop runs all the time
        std::this_thread::yield();
}

double BusyLoop::takeLongest()
{
    return 1e-9 * static_cast<double>(m_longest.exchange(0));
}

void BusyLoop::run()
{
    Clock::time_point last = Clock::now();
    while (!m_stop) {
        m_link.exchange();
        const Clock::time_point now = Clock::now();
        const long taken = static_cast<long>((now - last).count());
        last = now;
        if (taken > m_longest)
            m_longest = taken;
        ++m_exchanges;
    }
}
