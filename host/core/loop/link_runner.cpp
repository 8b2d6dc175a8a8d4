#include "host/core/loop/link_runner.h"

#include "host/core/line/port_error.h"

namespace velko
{

LinkRunner::LinkRunner(CommunicationLoop &loop) : m_loop(loop) {}

LinkRunner::~LinkRunner()
{
    stop();
}

void LinkRunner::start()
{
    stop(); // an earlier start that failed, or that still runs
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopping = false;
        m_isOpened = false;
        m_openError.clear();
    }
    m_thread.reset(QThread::create([this] { run(); }));
    m_thread->start();
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_isOpened || !m_openError.empty(); });
    if (!m_openError.empty())
        throw PortError(m_openError);
}

void LinkRunner::stop()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    if (m_thread)
        m_thread->wait();
}

void LinkRunner::post(const Order &order)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_orders.push_back(order);
        m_isIdle = false;
    }
    m_changed.notify_all();
}

bool LinkRunner::isIdle() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_isIdle;
}

void LinkRunner::run()
{
    takeOrders(); // other settings apply before the port is opened
    if (!openFirst())
        return;
    while (beginTurn())
        turn();
    takeOrders();                         // the last ones, so that every write gets a result
    m_loop.close("the link was stopped"); // on the thread that opened it
}

bool LinkRunner::beginTurn()
{
    takeOrders();
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isIdle = m_orders.empty() && !m_loop.hasPendingWrites();
    return !m_isStopping;
}

void LinkRunner::turn()
{
    if (m_loop.isOpen()) {
        if (!m_loop.turn())
            pause(m_loop.idleTime());
        return;
    }
    if (const std::optional<milliseconds> time = m_loop.reopen())
        pause(*time);
}

// Does not wait for the port: its name may be wrong. Only a port that was open before is waited
// for.
bool LinkRunner::openFirst()
{
    std::string error;
    try {
        m_loop.open();
    } catch (const PortError &thrown) {
        error = thrown.what();
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isOpened = error.empty();
    m_openError = error;
    m_changed.notify_all();
    return m_isOpened;
}

void LinkRunner::takeOrders()
{
    std::vector<Order> orders;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        orders.swap(m_orders);
    }
    for (const Order &order : orders)
        order(m_loop);
}

void LinkRunner::pause(milliseconds time)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait_for(lock, time, [this] { return m_isStopping || !m_orders.empty(); });
}

} // namespace velko
