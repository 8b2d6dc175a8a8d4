// The stations on a simulated line: requests in, responses out, each at its time.
#pragma once

#include "host/core/line/clock.h"
#include "host/core/line/line_tap.h"
#include "host/plc/faults.h"
#include "host/plc/outbox.h"
#include "host/plc/request_log.h"

#include <QByteArray>

#include <cstdint>
#include <memory>
#include <vector>

namespace velko
{

class SimulatedStation;

struct SimulatedLineSettings {
    std::vector<int> stations = {1}; ///< 1 to 247, all different
    int baudRate = 0;                ///< transmission times are those of this baud rate; 0: no time
    bool echo = false;               ///< the line echoes requests, as some RS-485 adapters do
    bool moving = false;             ///< input registers 0 to 4 change with time
    LineTaps taps; ///< for requests as sent, for responses as received; outlive the PLC
};

/// Has no lock: its owner guards it.
class SimulatedStations
{
public:
    /// Throws std::runtime_error.
    explicit SimulatedStations(const SimulatedLineSettings &settings);
    ~SimulatedStations();

    /// Notes a request in the log. Returns its entry.
    uint64_t note(const QByteArray &frame, Clock::time_point arrival);

    /// Returns what the line echoes at once; empty if it does not.
    QByteArray echoOf(const QByteArray &frame) const;

    /// Executes the request. Its responses wait in the outbox.
    void execute(const QByteArray &frame, Clock::time_point arrival, uint64_t entry);

    /// The chunk was sent.
    void sent(const Outbox::Chunk &chunk);

    Outbox &outbox() { return m_outbox; }
    const RequestLog &log() const { return m_log; }

    // These throw std::out_of_range for a station that is not simulated.

    /// Sets the fault from the next request on and restarts the count of `every`.
    void setFault(int station, const Fault &fault);
    /// Register n, counted from 0, is at index n.
    const std::vector<uint16_t> &inputRegisters(int station) const;
    const std::vector<uint16_t> &holdingRegisters(int station) const;

    /// `on`: inverts a bit of each later echo, as if two stations sent at the same time.
    void collide(bool on) { m_collide = on; }

private:
    SimulatedStation &at(int number) const;
    void respond(SimulatedStation &station, const QByteArray &frame, Clock::time_point arrival,
                 uint64_t entry);

    const SimulatedLineSettings m_settings;
    const Clock::time_point m_start = Clock::now();
    std::vector<std::unique_ptr<SimulatedStation>> m_stations;
    bool m_collide = false;
    RequestLog m_log;
    Outbox m_outbox;
};

} // namespace velko
