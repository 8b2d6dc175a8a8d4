#include "host/core/stations/station_watch.h"

namespace velko
{

namespace
{

// First at once: the station may have missed one request alone.
GrowingPause probePauses()
{
    return {milliseconds(0), milliseconds(500), milliseconds(10000)};
}

} // namespace

StationWatch::State StationWatch::state(int station) const
{
    const auto place = m_stations.find(station);
    return place == m_stations.end() ? ON : place->second.state;
}

void StationWatch::silent(int station, int queuedWrites)
{
    m_stations.insert({station, {CLEARING, Clock::now(), {}, probePauses(), queuedWrites}});
}

void StationWatch::writeEnded()
{
    for (auto &entry : m_stations)
        --entry.second.writesLeft;
}

std::vector<int> StationWatch::cleared(bool isQueueEmpty) const
{
    std::vector<int> stations;
    for (const auto &[station, entry] : m_stations)
        if (entry.state == CLEARING && (isQueueEmpty || entry.writesLeft <= 0))
            stations.push_back(station);
    return stations;
}

void StationWatch::off(int station)
{
    Station &entry = m_stations.at(station);
    entry.state = OFF;
    entry.nextProbe = Clock::now() + entry.pause.next();
}

Clock::duration StationWatch::on(int station)
{
    const Clock::duration absence = Clock::now() - m_stations.at(station).since;
    m_stations.erase(station);
    return absence;
}

std::optional<int> StationWatch::nextProbe()
{
    for (auto &[station, entry] : m_stations) {
        if (entry.state != OFF || entry.nextProbe > Clock::now())
            continue;
        entry.state = PROBING;
        return station;
    }
    return std::nullopt;
}

std::vector<int> StationWatch::restart()
{
    std::vector<int> probing;
    for (auto &[station, entry] : m_stations) {
        if (entry.state == PROBING)
            probing.push_back(station);
        if (entry.state == CLEARING)
            continue;
        entry.state = OFF;
        entry.pause.restart();
        entry.nextProbe = Clock::now() + entry.pause.next();
    }
    return probing;
}

std::vector<int> StationWatch::notOn() const
{
    std::vector<int> stations;
    for (const auto &entry : m_stations)
        stations.push_back(entry.first);
    return stations;
}

} // namespace velko
