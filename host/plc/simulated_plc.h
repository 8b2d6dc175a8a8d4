// Simulated PLCs on one pseudo-terminal, for a host without a device. libmodbus handles the
// protocol. The line, its timing and its faults are simulated here.
#pragma once

#include "host/core/line/clock.h"
#include "host/plc/faults.h"
#include "host/plc/request_log.h"
#include "host/plc/simulated_stations.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace velko
{

class SimulatedLine;

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

    /// Return copies of the registers. Register n, counted from 0, is at index n.
    std::vector<uint16_t> inputRegisters(int station) const;
    std::vector<uint16_t> holdingRegisters(int station) const;

    /// Returns the last requests, oldest first, at most RequestLog::MAX_REQUESTS.
    std::vector<SeenRequest> requests() const;

private:
    // All of them run on m_thread.
    void serve();
    void handle(const QByteArray &frame, Clock::time_point arrival);
    void sendDue();

    // Constant after the construction.
    const SimulatedLineSettings m_settings;
    QString m_device;

    std::atomic<bool> m_stop{false};

    std::unique_ptr<SimulatedLine> m_line; // used only by m_thread after its start

    mutable std::mutex m_mutex; // guards m_stations, but not their outbox; never held while waiting
    SimulatedStations m_stations;

    std::thread m_thread;
};

} // namespace velko
