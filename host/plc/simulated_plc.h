// PLCs on one simulated line, a pseudo-terminal, for trying a host without a device. libmodbus does
// their protocol; the line with its speed and its faults is ours.
#pragma once

#include "host/core/line/line_tap.h"
#include "host/plc/faults.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace velko
{

struct SimulatedLineSettings {
    std::vector<int> stations = {1};
    int baudRate = 0;    ///< requests and replies take their time on the line; 0: they take none
    bool echo = false;   ///< the line returns what the master sends, as some RS-485 adapters do
    bool moving = false; ///< input registers 0 to 9 change with time
    LineTaps taps;       ///< see the requests as sent, and what the stations send as received
};

/// A request as it arrived, to whatever station.
struct SeenRequest {
    std::chrono::steady_clock::time_point arrival; ///< of its first byte
    std::chrono::steady_clock::time_point end; ///< when the last byte of the reply was sent; with
                                               ///< no reply, when the request was dealt with
    QByteArray frame;
};

class SimulatedPlc
{
public:
    /// Starts the slaves. Throws std::runtime_error.
    explicit SimulatedPlc(const SimulatedLineSettings &settings);
    /// Stops them and hangs up: a master sees an end of file, or EIO.
    ~SimulatedPlc();
    SimulatedPlc(const SimulatedPlc &) = delete;
    SimulatedPlc &operator=(const SimulatedPlc &) = delete;

    /// The device that a master opens.
    QString device() const { return m_device; }

    // The rest may be called from any thread. A station that is not simulated throws
    // std::out_of_range.

    /// From the next request on; restarts the count of `every`.
    void setFault(int station, const Fault &fault);
    /// From now on a bit of each echo is flipped, as when two stations send at once.
    void collide(bool on) { m_collide = on; }

    /// Copies of its memory: register n stands at index n.
    std::vector<uint16_t> inputRegisters(int station) const;
    std::vector<uint16_t> holdingRegisters(int station) const;

    /// All requests so far, oldest first; the oldest are forgotten beyond 100,000.
    std::vector<SeenRequest> requests() const;

private:
    struct Line;    // the pseudo-terminal
    struct Station; // what libmodbus needs, and the fault
    struct Request;

    void serve();
    void handle(const Request &request);
    bool echo(const QByteArray &frame);
    void answer(Station &station, const Request &request, uint64_t entry);
    void sendDue();
    uint64_t note(const Request &request);
    void noteEnd(uint64_t entry);
    Station &stationOf(int number) const;

    const SimulatedLineSettings m_settings;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    QString m_device;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_collide{false};
    std::unique_ptr<Line> m_line; // belongs to the thread

    mutable std::mutex m_mutex; // of all that follows; never held while waiting
    std::vector<std::unique_ptr<Station>> m_stations;
    std::deque<SeenRequest> m_requests;
    uint64_t m_forgotten = 0; // entries that no longer stand in m_requests

    std::thread m_thread;
};

} // namespace velko
