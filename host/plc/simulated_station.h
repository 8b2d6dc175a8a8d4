// One simulated slave: libmodbus, its registers and the present fault.
#pragma once

#include "host/plc/descriptors.h"
#include "host/plc/faults.h"
#include "host/plc/station_memory.h"

#include <QByteArray>
#include <modbus.h>

#include <chrono>
#include <memory>

namespace velko
{

/// Has no lock: its owner guards it.
class SimulatedStation
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    /// `number`: 1 to 247. `position`: in the list of stations, from 0. Throws std::runtime_error.
    SimulatedStation(int number, int position);

    int number() const { return m_number; }

    /// The registers, owned by this object.
    StationMemory &memory() { return m_memory; }
    const StationMemory &memory() const { return m_memory; }

    /// Sets the fault from the next request on and restarts the count of `every`.
    void setFault(const Fault &fault);

    /// Returns the fault that affects the next request. Call it once for each request.
    Fault nextFault();

    /// Executes the request unless the fault prevents it. The frame has a correct CRC and the
    /// number of this station or of a broadcast. Returns the correct response; empty if there is
    /// none.
    QByteArray responseTo(const QByteArray &request, const Fault &fault);

    /// The time at which the last response ends. A station sends one response after the other.
    TimePoint busyUntil() const { return m_busyUntil; }
    void setBusyUntil(TimePoint end) { m_busyUntil = end; }

private:
    QByteArray execute(const QByteArray &request);

    const int m_number;
    SocketPair m_sockets; // libmodbus has the inner end
    std::unique_ptr<modbus_t, decltype(&modbus_free)> m_context;
    StationMemory m_memory;
    modbus_mapping_t m_mapping; // points into m_memory
    TimePoint m_busyUntil;
    Fault m_fault;
    int m_count = 0; // of requests since the fault was set or affected one
};

} // namespace velko
