#include "host/core/stations/station_states.h"

#include <algorithm>

namespace velko
{

using Lock = std::lock_guard<std::mutex>;

namespace
{

const int DISABLE = 0; // EnCommStation's second argument
const int ENABLE = 1;

} // namespace

void StationStates::beginClearing(int station, int queuedWrites)
{
    const Lock lock(m_mutex);
    m_entries.insert({station, {CLEARING, Clock::now(), queuedWrites}});
    ++m_past[station].timesOffline;
}

void StationStates::writeEnded()
{
    const Lock lock(m_mutex);
    for (auto &place : m_entries)
        --place.second.writesLeft;
}

std::vector<int> StationStates::endClearing(bool isQueueEmpty)
{
    const Lock lock(m_mutex);
    std::vector<int> cleared;
    for (auto &[station, entry] : m_entries) {
        if (entry.state != CLEARING || (!isQueueEmpty && entry.writesLeft > 0))
            continue;
        entry.state = OFFLINE;
        m_driver.EnCommStation(station, DISABLE);
        cleared.push_back(station);
    }
    return cleared;
}

std::vector<int> StationStates::offlineStations() const
{
    const Lock lock(m_mutex);
    std::vector<int> stations;
    for (const auto &[station, entry] : m_entries)
        if (entry.state == OFFLINE)
            stations.push_back(station);
    return stations;
}

Clock::duration StationStates::takeOnline(int station)
{
    const Lock lock(m_mutex);
    const auto place = m_entries.find(station);
    const Clock::duration absence = Clock::now() - place->second.since;
    remove(place);
    return absence;
}

void StationStates::keepOnly(const std::vector<int> &stations)
{
    const Lock lock(m_mutex);
    for (auto place = m_entries.begin(); place != m_entries.end();) {
        if (std::binary_search(stations.begin(), stations.end(), place->first))
            ++place;
        else
            place = remove(place);
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

StationStates::Entries::iterator StationStates::remove(Entries::iterator place)
{
    m_past[place->first].timeOffline += Clock::now() - place->second.since;
    m_driver.EnCommStation(place->first, ENABLE);
    return m_entries.erase(place);
}

} // namespace velko
