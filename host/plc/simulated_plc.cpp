#include "host/plc/simulated_plc.h"

#include "host/core/line/crc16.h"
#include "host/core/line/replies.h"
#include "host/core/sizes/limits.h"
#include "host/plc/fault_effects.h"
#include "host/plc/frames.h"
#include "host/plc/line_pace.h"
#include "host/plc/plc_error.h"
#include "host/plc/simulated_line.h"
#include "host/plc/simulated_station.h"

#include <algorithm>
#include <set>
#include <stdexcept>

namespace velko
{

namespace
{

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

} // namespace

SimulatedPlc::SimulatedPlc(const SimulatedLineSettings &settings)
    : m_settings(settings),
      m_line(std::make_unique<SimulatedLine>())
{
    m_device = QString::fromStdString(m_line->device());
    std::set<int> known;
    for (const int number : settings.stations) {
        if (number < LOWEST_STATION || number > HIGHEST_STATION || !known.insert(number).second)
            failPlc("station " + std::to_string(number) + " is out of range or a duplicate");
        const int position = static_cast<int>(m_stations.size());
        m_stations.push_back(std::make_unique<SimulatedStation>(number, position));
    }
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
        const bool hasInput = m_line->waitForInput();
        if (hasInput)
            m_line->read();
        const SimulatedLine::Request request = m_line->takeRequest(hasInput);
        if (!request.frame.isEmpty())
            handle(request.frame, request.arrival);
        sendDue();
    }
}

void SimulatedPlc::handle(const QByteArray &frame, TimePoint arrival)
{
    uint64_t entry = 0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        entry = m_log.add(arrival, frame);
    }
    m_settings.taps.sent(frame, arrival);
    const bool isUnderstood = echo(frame) && endsInItsCrc(frame);
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (isUnderstood)
        deliver(frame, arrival, entry);
    m_log.noteEnd(entry);
}

void SimulatedPlc::deliver(const QByteArray &frame, TimePoint arrival, uint64_t entry)
{
    const auto elapsed = std::chrono::duration_cast<milliseconds>(arrival - m_start);
    const int addressed = byteAt(frame, 0);
    for (const std::unique_ptr<SimulatedStation> &station : m_stations) {
        if (m_settings.moving)
            station->memory().move(elapsed);
        if (addressed == station->number() || addressed == BROADCAST_STATION)
            respond(*station, frame, arrival, entry);
    }
}

// False if another station seems to send at the same time: no station understands the request then.
bool SimulatedPlc::echo(const QByteArray &frame)
{
    if (!m_settings.echo)
        return true;
    const bool collides = m_collide;
    m_line->send(collides ? withFlippedBit(frame, 1) : frame);
    return !collides;
}

void SimulatedPlc::respond(SimulatedStation &station, const QByteArray &frame, TimePoint arrival,
                           uint64_t entry)
{
    const Fault fault = station.nextFault();
    const QByteArray response = station.responseTo(frame, fault);
    if (response.isEmpty())
        return;
    const nanoseconds character = characterTime(m_settings.baudRate);
    const nanoseconds gap = frameGap(m_settings.baudRate);
    const TimePoint planned = arrival + character * frame.size() + gap + delayOf(fault);
    const TimePoint begin = std::max({planned, Clock::now(), station.busyUntil()});
    const std::vector<Piece> pieces = piecesOf(response, fault, gap);
    station.setBusyUntil(m_line->outbox().add(begin, pieces, character, entry));
}

// With the lock, a master that has the complete response finds its end in the log.
void SimulatedPlc::sendDue()
{
    while (m_line->outbox().hasDue(Clock::now())) {
        const Outbox::Chunk chunk = m_line->outbox().takeFirst();
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_line->send(chunk.bytes);
        m_log.noteEnd(chunk.entry);
        m_settings.taps.received(chunk.whole, Clock::now());
    }
}

SimulatedStation &SimulatedPlc::stationOf(int number) const
{
    for (const std::unique_ptr<SimulatedStation> &station : m_stations) {
        if (station->number() == number)
            return *station;
    }
    throw std::out_of_range("station " + std::to_string(number) + " is not simulated");
}

void SimulatedPlc::setFault(int station, const Fault &fault)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    stationOf(station).setFault(fault);
}

std::vector<uint16_t> SimulatedPlc::inputRegisters(int station) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return stationOf(station).memory().inputRegisters();
}

std::vector<uint16_t> SimulatedPlc::holdingRegisters(int station) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return stationOf(station).memory().holdingRegisters();
}

std::vector<SeenRequest> SimulatedPlc::requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_log.requests();
}

} // namespace velko
