#include "host/core/loop/link_runner.h"

#include "host/core/line/port_error.h"

namespace velko
{

LinkRunner::LinkRunner(CommunicationLoop &loop) : m_loop(loop) {}

LinkRunner::~LinkRunner()
{
    stop();
}

void LinkRunner::start(MissingPort missing)
{
    stop(); // an earlier start that failed, or that still runs
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopping = false;
        m_hasTried = false;
        m_missing = missing;
        m_openError.clear();
    }
    m_loop.readCut().withdraw();
    m_thread.reset(QThread::create([this] { run(); }));
    m_thread->start();
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_hasTried; });
    if (!m_openError.empty() && missing == MissingPort::FAIL)
        throw PortError(m_openError);
}

void LinkRunner::stop()
{
    requestStop(false);
    if (m_thread)
        m_thread->wait();
}

void LinkRunner::requestStop(bool cutsReads)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopping = true;
    }
    if (cutsReads)
        m_loop.readCut().request();
    m_changed.notify_all();
}

void LinkRunner::pause(milliseconds limit)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_isPauseWanted = true;
    m_changed.notify_all();
    m_changed.wait_for(lock, limit, [this] { return m_isPaused || hasEnded(); });
}

void LinkRunner::resume()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isPauseWanted = false;
    m_changed.notify_all();
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
    if (!openFirst() && !mayStayClosed())
        return;
    while (beginTurn())
        turn();
    takeOrders();                         // the last ones, so that every write gets a result
    m_loop.close("the link was stopped"); // on the thread that opened it
}

bool LinkRunner::beginTurn()
{
    takeOrders();
    // The read half of a bit write must not be long before its write half.
    if (!m_loop.isInProgress())
        keepPause();
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isIdle = m_orders.empty() && !m_loop.hasPendingWrites();
    return !m_isStopping;
}

void LinkRunner::keepPause()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_isPaused = m_isPauseWanted;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return !m_isPauseWanted || m_isStopping; });
    m_isPaused = false;
}

void LinkRunner::turn()
{
    if (m_loop.isOpen()) {
        if (!m_loop.turn())
            sleep(m_loop.idleTime());
        return;
    }
    if (const std::optional<milliseconds> time = m_loop.reopen())
        sleep(*time);
}

bool LinkRunner::openFirst()
{
    std::string error;
    try {
        m_loop.open();
    } catch (const PortError &thrown) {
        error = thrown.what();
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_hasTried = true;
    m_openError = error;
    m_changed.notify_all();
    return error.empty();
}

bool LinkRunner::mayStayClosed() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_missing == MissingPort::WAIT;
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

void LinkRunner::sleep(milliseconds time)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait_for(lock, time,
                       [this] { return m_isStopping || m_isPauseWanted || !m_orders.empty(); });
}

} // namespace velko
