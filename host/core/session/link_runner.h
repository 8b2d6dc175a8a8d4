// Runs the communication loop of a link on a thread of its own.
#pragma once

#include "host/core/loop/communication_loop.h"

#include <QThread>

#include <condition_variable>
#include <functional>
#include <memory>

namespace velko
{

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

    /// Opens the port and begins. Returns when the port is open; throws PortError when it cannot be
    /// opened, and nothing runs then.
    void start();

    /// Ends after the exchange that is under way.
    void stop();

    /// Something to be done on the communication thread between two turns.
    void post(const Order &order);

    /// Every order was carried out, and the fate of every write is known.
    bool isIdle() const;

private:
    void run();
    bool openFirst();
    void reopen();
    void takeOrders();
    void pause(milliseconds time);

    CommunicationLoop &m_loop;
    std::unique_ptr<QThread> m_thread; // QSerialPort wants one of Qt's

    mutable std::mutex m_mutex; // guards all below
    std::condition_variable m_changed;
    std::vector<Order> m_orders;
    bool m_isStopping = false;
    bool m_isIdle = false;
    bool m_isOpened = false;
    std::string m_openError;

    GrowingPause m_reopenPauses; // the communication thread's
};

} // namespace velko
