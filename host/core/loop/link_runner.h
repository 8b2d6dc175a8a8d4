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

    /// Starts the thread and returns when the port is open. Throws PortError if the port cannot be
    /// opened; then the thread has ended or is about to end. May be called again, also after stop().
    void start();

    /// Ends the thread after the exchange in progress and waits for its end. Not from the thread
    /// itself.
    void stop();

    /// Queues an order, which is executed on the communication thread between two turns.
    void post(const Order &order);

    /// True if every order is executed and the results of all writes are known.
    bool isIdle() const;

private:
    void run();
    bool openFirst();
    bool beginTurn();
    void turn();
    void takeOrders();
    void pause(milliseconds time);

    CommunicationLoop &m_loop;
    std::unique_ptr<QThread> m_thread; // not std::thread: QSerialPort needs a thread of Qt

    mutable std::mutex m_mutex; // guards all below
    std::condition_variable m_changed;
    std::vector<Order> m_orders;
    bool m_isStopping = false;
    bool m_isIdle = false;
    bool m_isOpened = false;
    std::string m_openError;
};

} // namespace velko
