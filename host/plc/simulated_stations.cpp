#include "host/plc/simulated_stations.h"

#include "host/core/line/crc16.h"
#include "host/core/line/replies.h"
#include "host/core/sizes/limits.h"
#include "host/plc/fault_effects.h"
#include "host/plc/frames.h"
#include "host/plc/line_pace.h"
#include "host/plc/plc_error.h"
#include "host/plc/simulated_station.h"

#include <algorithm>
#include <set>
#include <stdexcept>

namespace velko
{

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

SimulatedStations::SimulatedStations(const SimulatedLineSettings &settings) : m_settings(settings)
{
    std::set<int> known;
    for (const int number : settings.stations) {
        if (number < LOWEST_STATION || number > HIGHEST_STATION || !known.insert(number).second)
            failPlc("station " + std::to_string(number) + " is out of range or a duplicate");
        const int position = static_cast<int>(m_stations.size());
        m_stations.push_back(std::make_unique<SimulatedStation>(number, position));
    }
}

SimulatedStations::~SimulatedStations() = default;

uint64_t SimulatedStations::note(const QByteArray &frame, Clock::time_point arrival)
{
    return m_log.add(arrival, frame);
}

QByteArray SimulatedStations::echoOf(const QByteArray &frame) const
{
    if (!m_settings.echo)
        return QByteArray();
    return m_collide ? withFlippedBit(frame, 1) : frame;
}

// If another station seems to send at the same time, no station understands the request.
void SimulatedStations::execute(const QByteArray &frame, Clock::time_point arrival, uint64_t entry)
{
    const bool collides = m_settings.echo && m_collide;
    const auto elapsed = std::chrono::duration_cast<milliseconds>(arrival - m_start);
    const int addressed = byteAt(frame, 0);
    for (const std::unique_ptr<SimulatedStation> &station : m_stations) {
        if (collides || !endsInItsCrc(frame))
            break;
        if (m_settings.moving)
            station->memory().move(elapsed);
        if (addressed == station->number() || addressed == BROADCAST_STATION)
            respond(*station, frame, arrival, entry);
    }
    m_log.noteEnd(entry);
}

void SimulatedStations::respond(SimulatedStation &station, const QByteArray &frame,
                                Clock::time_point arrival, uint64_t entry)
{
    const Fault fault = station.nextFault();
    const QByteArray response = station.responseTo(frame, fault);
    if (response.isEmpty())
        return;
    const nanoseconds character = characterTime(m_settings.baudRate);
    const nanoseconds gap = frameGap(m_settings.baudRate);
    const Clock::time_point planned = arrival + character * frame.size() + gap + delayOf(fault);
    const Clock::time_point begin = std::max({planned, Clock::now(), station.busyUntil()});
    station.setBusyUntil(m_outbox.add(begin, piecesOf(response, fault, gap), character, entry));
}

void SimulatedStations::sent(const Outbox::Chunk &chunk)
{
    m_log.noteEnd(chunk.entry);
}

void SimulatedStations::setFault(int station, const Fault &fault)
{
    at(station).setFault(fault);
}

const std::vector<uint16_t> &SimulatedStations::inputRegisters(int station) const
{
    return at(station).memory().inputRegisters();
}

const std::vector<uint16_t> &SimulatedStations::holdingRegisters(int station) const
{
    return at(station).memory().holdingRegisters();
}

SimulatedStation &SimulatedStations::at(int number) const
{
    for (const std::unique_ptr<SimulatedStation> &station : m_stations) {
        if (station->number() == number)
            return *station;
    }
    throw std::out_of_range("station " + std::to_string(number) + " is not simulated");
}

} // namespace velko
