// Runs the communication loop of a link on a thread of its own.
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

/// Any thread may call, one at a time for start() and stop().
class LinkRunner
{
public:
    using Order = std::function<void(CommunicationLoop &)>;

    /// `loop` is the caller's and outlives the runner.
    explicit LinkRunner(CommunicationLoop &loop);
    /// Stops.
    ~LinkRunner();
    LinkRunner(const LinkRunner &) = delete;
    LinkRunner &operator=(const LinkRunner &) = delete;

    /// Starts the thread and returns when the port is open. Throws PortError if it cannot be opened;
    /// nothing runs then.
    void start();

    /// Ends after the exchange in progress.
    void stop();

    /// Carries out an order on the communication thread, between two turns.
    void post(const Order &order);

    /// Every order was carried out, and the results of all writes are known.
    bool isIdle() const;

private:
    void run();
    bool openFirst();
    bool beginTurn();
    void turn();
    void takeOrders();
    void pause(milliseconds time);

    CommunicationLoop &m_loop;
    std::unique_ptr<QThread> m_thread; // QSerialPort needs one of Qt's

    mutable std::mutex m_mutex; // guards all below
    std::condition_variable m_changed;
    std::vector<Order> m_orders;
    bool m_isStopping = false;
    bool m_isIdle = false;
    bool m_isOpened = false;
    std::string m_openError;
};

} // namespace velko
