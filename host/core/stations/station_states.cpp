#include "host/core/stations/station_states.h"

#include <algorithm>

namespace velko
{

using Lock = std::lock_guard<std::mutex>;

namespace
{

const int DISABLE = 0; // EnCommStation's second argument
const int ENABLE = 1;

// The first probe is due at once: the station may have missed only one request.
GrowingPause probePauses()
{
    return {milliseconds(0), milliseconds(500), milliseconds(10000)};
}

} // namespace

void StationStates::beginClearing(int station, int queuedWrites)
{
    const Lock lock(m_mutex);
    m_entries.insert({station, {CLEARING, Clock::now(), {}, probePauses(), queuedWrites}});
    ++m_past[station].timesOffline;
}

void StationStates::writeEnded()
{
    const Lock lock(m_mutex);
    for (auto &place : m_entries)
        --place.second.writesLeft;
}

void StationStates::endClearing(bool isQueueEmpty)
{
    const Lock lock(m_mutex);
    for (auto &place : m_entries) {
        const Entry &entry = place.second;
        if (entry.state == CLEARING && (isQueueEmpty || entry.writesLeft <= 0))
            takeOffline(place);
    }
}

std::optional<int> StationStates::beginProbe()
{
    const Lock lock(m_mutex);
    for (auto &[station, entry] : m_entries) {
        if (entry.state != OFFLINE || entry.nextProbe > Clock::now())
            continue;
        entry.state = PROBING;
        m_driver.EnCommStation(station, ENABLE);
        return station;
    }
    return std::nullopt;
}

void StationStates::probeFailed(int station)
{
    const Lock lock(m_mutex);
    takeOffline(*m_entries.find(station));
}

Clock::duration StationStates::probeSucceeded(int station)
{
    const Lock lock(m_mutex);
    const auto place = m_entries.find(station);
    const Clock::duration absence = Clock::now() - place->second.since;
    takeOnline(place);
    return absence;
}

void StationStates::restartProbes()
{
    const Lock lock(m_mutex);
    for (auto &place : m_entries) {
        if (place.second.state == CLEARING)
            continue;
        place.second.pause.restart();
        takeOffline(place);
    }
}

void StationStates::keepOnly(const std::vector<int> &stations)
{
    const Lock lock(m_mutex);
    for (auto place = m_entries.begin(); place != m_entries.end();) {
        if (std::binary_search(stations.begin(), stations.end(), place->first))
            ++place;
        else
            place = takeOnline(place);
    }
}

StationStates::State StationStates::state(int station) const
{
    const Lock lock(m_mutex);
    const auto place = m_entries.find(station);
    return place == m_entries.end() ? ONLINE : place->second.state;
}

StationPresence StationStates::presenceOf(int station) const
{
    const Lock lock(m_mutex);
    const auto past = m_past.find(station);
    StationPresence presence = past == m_past.end() ? StationPresence() : past->second;
    const auto present = m_entries.find(station);
    presence.isOnline = present == m_entries.end();
    if (!presence.isOnline)
        presence.timeOffline += Clock::now() - present->second.since;
    return presence;
}

void StationStates::takeOffline(Entries::value_type &place)
{
    Entry &entry = place.second;
    entry.state = OFFLINE;
    entry.nextProbe = Clock::now() + entry.pause.next();
    m_driver.EnCommStation(place.first, DISABLE);
}

StationStates::Entries::iterator StationStates::takeOnline(Entries::iterator place)
{
    m_past[place->first].timeOffline += Clock::now() - place->second.since;
    m_driver.EnCommStation(place->first, ENABLE);
    return m_entries.erase(place);
}

} // namespace velko
