// Simulated PLCs on one pseudo-terminal, for a host without a device. libmodbus handles the
// protocol. The line, its timing and its faults are simulated here.
#pragma once

#include "host/core/line/line_tap.h"
#include "host/plc/faults.h"
#include "host/plc/request_log.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace velko
{

class SimulatedLine;
class SimulatedStation;

struct SimulatedLineSettings {
    std::vector<int> stations = {1}; ///< 1 to 247, all different
    int baudRate = 0;                ///< transmission times are those of this baud rate; 0: no time
    bool echo = false;               ///< the line echoes requests, as some RS-485 adapters do
    bool moving = false;             ///< input registers 0 to 4 change with time
    LineTaps taps; ///< for requests as sent, for responses as received; outlive the PLC
};

class SimulatedPlc
{
public:
    /// Starts the slaves and their thread. Throws std::runtime_error.
    explicit SimulatedPlc(const SimulatedLineSettings &settings);
    /// Stops them and hangs up. A read of a master then returns an end of file or EIO.
    ~SimulatedPlc();
    SimulatedPlc(const SimulatedPlc &) = delete;
    SimulatedPlc &operator=(const SimulatedPlc &) = delete;

    /// The path that a master opens.
    QString device() const { return m_device; }

    // Any thread may call the following functions. They throw std::out_of_range for a station that
    // is not simulated.

    /// Sets the fault from the next request on and restarts the count of `every`.
    void setFault(int station, const Fault &fault);

    /// `on`: inverts a bit of each later echo, as if two stations sent at the same time.
    void collide(bool on) { m_collide = on; }

    /// Return copies of the registers. Register n, counted from 0, is at index n.
    std::vector<uint16_t> inputRegisters(int station) const;
    std::vector<uint16_t> holdingRegisters(int station) const;

    /// Returns the last requests, oldest first, at most RequestLog::MAX_REQUESTS.
    std::vector<SeenRequest> requests() const;

private:
    using TimePoint = std::chrono::steady_clock::time_point;

    // All of them run on m_thread.
    void serve();
    void handle(const QByteArray &frame, TimePoint arrival);
    void deliver(const QByteArray &frame, TimePoint arrival, uint64_t entry);
    bool echo(const QByteArray &frame);
    void respond(SimulatedStation &station, const QByteArray &frame, TimePoint arrival,
                 uint64_t entry); // with m_mutex locked
    void sendDue();

    SimulatedStation &stationOf(int number) const; // with m_mutex locked

    // Constant after the construction.
    const SimulatedLineSettings m_settings;
    const TimePoint m_start = std::chrono::steady_clock::now();
    QString m_device;

    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_collide{false};

    std::unique_ptr<SimulatedLine> m_line; // used only by m_thread after its start

    mutable std::mutex m_mutex; // guards m_stations and m_log; never held while waiting
    std::vector<std::unique_ptr<SimulatedStation>> m_stations;
    RequestLog m_log;

    std::thread m_thread;
};

} // namespace velko
