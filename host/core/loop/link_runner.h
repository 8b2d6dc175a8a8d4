// The communication thread of a link.
#pragma once

#include "host/core/line/line_times.h"
#include "host/core/loop/communication_loop.h"

#include <QThread>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace velko
{

/// What a start does if the port is missing.
enum class MissingPort {
    FAIL, ///< it throws PortError
    WAIT  ///< it returns; the port is opened when it is there
};

/// Runs a communication loop on its own thread. Any thread may call; calls of start() and stop()
/// must not overlap.
class LinkRunner
{
public:
    using Order = std::function<void(CommunicationLoop &)>;

    /// `loop` is the caller's and outlives this object.
    explicit LinkRunner(CommunicationLoop &loop);
    /// As stop().
    ~LinkRunner();
    LinkRunner(const LinkRunner &) = delete;
    LinkRunner &operator=(const LinkRunner &) = delete;

    /// Starts the thread and returns when the port is open or cannot be opened. Throws PortError if
    /// it cannot, for MissingPort::FAIL; then the thread has ended or is about to end. May be called
    /// again, also after stop().
    void start(MissingPort missing);

    /// Ends the thread after the exchange in progress and waits for its end. Not from the thread
    /// itself.
    void stop();
    /// The first half of stop(): does not wait. With `cutsReads`, a read in progress ends within
    /// ReadCut::PATIENCE.
    void requestStop(bool cutsReads);
    /// True if the thread has ended.
    bool hasEnded() const { return !m_thread || m_thread->isFinished(); }

    /// Returns when the thread is between two requests, where it stays until resume() or stop(); after
    /// at most `limit` in any case.
    void pause(milliseconds limit);
    void resume();

    /// Queues an order, which is executed on the communication thread between two turns.
    void post(const Order &order);

    /// True if every order is executed and the results of all writes are known.
    bool isIdle() const;

private:
    void run();
    bool openFirst();
    bool mayStayClosed() const;
    bool beginTurn();
    void keepPause();
    void turn();
    void takeOrders();
    void sleep(milliseconds time);

    CommunicationLoop &m_loop;
    std::unique_ptr<QThread> m_thread; // not std::thread: QSerialPort needs a thread of Qt

    mutable std::mutex m_mutex; // guards all below
    std::condition_variable m_changed;
    std::vector<Order> m_orders;
    bool m_isStopping = false;
    bool m_isIdle = false;
    bool m_isPauseWanted = false;
    bool m_isPaused = false;
    bool m_hasTried = false; // to open the port
    MissingPort m_missing = MissingPort::FAIL;
    std::string m_openError;
};

} // namespace velko
