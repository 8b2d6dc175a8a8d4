// The simulated stations behind a port without a device. With a ReplacedTime on the thread, a test of
// silence takes no time and does not depend on the machine.
#pragma once

#include "host/core/line/byte_port.h"
#include "host/core/line/line_settings.h"
#include "host/plc/faults.h"
#include "host/plc/request_log.h"
#include "host/plc/simulated_stations.h"

#include <QByteArray>

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace velko
{

/// Any thread may call. Outlives its ports.
class VirtualPlc
{
public:
    explicit VirtualPlc(const SimulatedLineSettings &settings) : m_stations(settings) {}

    PortOpener opener();

    /// Without a plug, ports fail, and none can be opened.
    void plug(bool isPlugged);

    void setFault(int station, const Fault &fault);
    void collide(bool on);
    std::vector<uint16_t> inputRegisters(int station) const;
    std::vector<uint16_t> holdingRegisters(int station) const;
    std::vector<SeenRequest> requests() const;
    /// The settings of all ports that were opened.
    std::vector<LineSettings> openings() const;

    // Called by a port.

    void open(const LineSettings &settings);
    void write(const QByteArray &frame);
    QByteArray read(int timeout);

private:
    using Lock = std::lock_guard<std::mutex>;

    void failIfUnplugged() const; // with m_mutex locked
    QByteArray takeDue();

    mutable std::mutex m_mutex; // guards the others; never held while waiting
    SimulatedStations m_stations;
    QByteArray m_received; // by the port: the echo
    std::vector<LineSettings> m_openings;
    bool m_isPlugged = true;
};

} // namespace velko
