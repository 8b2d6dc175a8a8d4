#include "tests/virtual_plc.h"

#include "host/core/line/port_error.h"

#include <algorithm>

namespace velko
{

namespace
{

class VirtualPort : public BytePort
{
public:
    VirtualPort(VirtualPlc &plc, const LineSettings &settings)
        : m_plc(plc),
          m_device(settings.devices.at(0))
    {
        plc.open(settings);
    }

    const std::string &device() const override { return m_device; }
    void write(const QByteArray &bytes) override { m_plc.write(bytes); }
    QByteArray read(int timeout) override { return m_plc.read(timeout); }

private:
    VirtualPlc &m_plc;
    const std::string m_device;
};

} // namespace

PortOpener VirtualPlc::opener()
{
    return [this](const LineSettings &settings, const AdapterIdentity &) {
        return std::make_unique<VirtualPort>(*this, settings);
    };
}

void VirtualPlc::open(const LineSettings &settings)
{
    const Lock lock(m_mutex);
    failIfUnplugged();
    m_openings.push_back(settings);
}

void VirtualPlc::plug(bool isPlugged)
{
    const Lock lock(m_mutex);
    m_isPlugged = isPlugged;
}

void VirtualPlc::failIfUnplugged() const
{
    if (!m_isPlugged)
        throw PortError("no such device");
}

void VirtualPlc::write(const QByteArray &frame)
{
    const Lock lock(m_mutex);
    failIfUnplugged();
    const Clock::time_point now = Clock::now();
    const uint64_t entry = m_stations.note(frame, now);
    m_received += m_stations.echoOf(frame);
    m_stations.execute(frame, now, entry);
}

QByteArray VirtualPlc::read(int timeout)
{
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(timeout);
    Clock::time_point next = end;
    {
        const Lock lock(m_mutex);
        if (m_received.isEmpty())
            next = std::min(end, m_stations.outbox().nextDue(end));
        else
            next = Clock::now();
    }
    Clock::sleepUntil(next);
    const Lock lock(m_mutex);
    failIfUnplugged();
    return takeDue();
}

QByteArray VirtualPlc::takeDue()
{
    while (m_stations.outbox().hasDue(Clock::now())) {
        const Outbox::Chunk chunk = m_stations.outbox().takeFirst();
        m_received += chunk.bytes;
        m_stations.sent(chunk);
    }
    QByteArray bytes;
    bytes.swap(m_received);
    return bytes;
}

void VirtualPlc::setFault(int station, const Fault &fault)
{
    const Lock lock(m_mutex);
    m_stations.setFault(station, fault);
}

void VirtualPlc::collide(bool on)
{
    const Lock lock(m_mutex);
    m_stations.collide(on);
}

std::vector<uint16_t> VirtualPlc::inputRegisters(int station) const
{
    const Lock lock(m_mutex);
    return m_stations.inputRegisters(station);
}

std::vector<uint16_t> VirtualPlc::holdingRegisters(int station) const
{
    const Lock lock(m_mutex);
    return m_stations.holdingRegisters(station);
}

std::vector<SeenRequest> VirtualPlc::requests() const
{
    const Lock lock(m_mutex);
    return m_stations.log().requests();
}

std::vector<LineSettings> VirtualPlc::openings() const
{
    const Lock lock(m_mutex);
    return m_openings;
}

} // namespace velko
