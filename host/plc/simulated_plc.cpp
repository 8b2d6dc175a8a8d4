#include "host/plc/simulated_plc.h"

#include "host/plc/simulated_line.h"

namespace velko
{

SimulatedPlc::SimulatedPlc(const SimulatedLineSettings &settings)
    : m_settings(settings),
      m_line(std::make_unique<SimulatedLine>()),
      m_stations(settings)
{
    m_device = QString::fromStdString(m_line->device());
    m_thread = std::thread(&SimulatedPlc::serve, this);
}

SimulatedPlc::~SimulatedPlc()
{
    m_stop = true;
    m_thread.join();
}

void SimulatedPlc::serve()
{
    while (!m_stop) {
        const bool hasInput = m_line->waitForInput(m_stations.outbox());
        if (hasInput)
            m_line->read();
        const SimulatedLine::Request request = m_line->takeRequest(hasInput);
        if (!request.frame.isEmpty())
            handle(request.frame, request.arrival);
        sendDue();
    }
}

void SimulatedPlc::handle(const QByteArray &frame, Clock::time_point arrival)
{
    uint64_t entry = 0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        entry = m_stations.note(frame, arrival);
    }
    m_settings.taps.sent(frame, arrival);
    m_line->send(m_stations.echoOf(frame));
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_stations.execute(frame, arrival, entry);
}

// With the lock, a master that has the complete response finds its end in the log.
void SimulatedPlc::sendDue()
{
    while (m_stations.outbox().hasDue(Clock::now())) {
        const Outbox::Chunk chunk = m_stations.outbox().takeFirst();
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_line->send(chunk.bytes);
        m_stations.sent(chunk);
        m_settings.taps.received(chunk.whole, Clock::now());
    }
}

void SimulatedPlc::setFault(int station, const Fault &fault)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_stations.setFault(station, fault);
}

std::vector<uint16_t> SimulatedPlc::inputRegisters(int station) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_stations.inputRegisters(station);
}

std::vector<uint16_t> SimulatedPlc::holdingRegisters(int station) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_stations.holdingRegisters(station);
}

std::vector<SeenRequest> SimulatedPlc::requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_stations.log().requests();
}

} // namespace velko
