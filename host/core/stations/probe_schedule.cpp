#include "host/core/stations/probe_schedule.h"

#include <algorithm>

namespace velko
{

namespace
{

using Duration = Clock::duration;
using Seconds = std::chrono::duration<double>;

const std::chrono::seconds MINUTE(60);
const Seconds BUDGET = MINUTE * 0.05; // of probes, in each minute

// Of the line's time for short probes. The rest of the budget is for full ones. The lower share
// leaves time for one full probe of 500 ms in each minute.
const double HIGH_SHARE = 0.045;
const double LOW_SHARE = 0.0405;

// In a round each station gets a short probe. At 19,200 baud, the low share is enough for ten.
const Seconds ROUND(14.2);
const int STATIONS_IN_ROUND = 10;

const milliseconds SHORTEST_TIMEOUT(50);
const int SLOWNESS = 3;          // times the slowest response
const milliseconds OVERHEAD(10); // of a probe: frame gap, request
const int FULL_EACH = 10;

// A full probe of a station that never answered and waits longer goes before the short ones.
const std::chrono::minutes LONGEST_WAIT(4);

const milliseconds INTERVAL_WHILE_NONE_IS_ONLINE(500);

GrowingPause probePauses()
{
    return {milliseconds(500), milliseconds(500), milliseconds(10000)};
}

milliseconds shortTimeout(const ProbeSchedule::Times &times)
{
    const milliseconds wanted = std::max(SLOWNESS * *times.slowest, SHORTEST_TIMEOUT);
    return std::min(wanted, times.timeout);
}

Duration toDuration(Seconds seconds)
{
    return std::chrono::duration_cast<Duration>(seconds);
}

} // namespace

void ProbeSchedule::set(int station, const Times &times)
{
    m_stations.insert({station, {times, probePauses(), {}, {}, {}, 0}}).first->second.times = times;
}

void ProbeSchedule::hasten(int station)
{
    const auto place = m_stations.find(station);
    if (place != m_stations.end())
        place->second.due = {};
}

void ProbeSchedule::restart()
{
    for (auto &place : m_stations) {
        place.second.pause = probePauses();
        place.second.due = {};
    }
}

std::optional<Probe> ProbeSchedule::due(bool isAnyOnline, Clock::time_point now) const
{
    if (!isAnyOnline)
        return now < nextUrgent() ? std::nullopt : urgent();
    const std::optional<Probe> full = dueFull(now);
    return full ? full : dueShort(now);
}

// While no station is online, probes take nobody's time.
std::optional<Probe> ProbeSchedule::urgent() const
{
    const auto place = earliest(&Station::last, [](const Station &) { return true; });
    if (place == m_stations.end())
        return std::nullopt;
    return wantsFull(place->second) ? fullProbe(*place) : shortProbe(*place);
}

std::optional<Probe> ProbeSchedule::dueFull(Clock::time_point now) const
{
    if (now < m_nextFull)
        return std::nullopt;
    const auto place = earliest(&Station::lastFull, [now](const Station &station) {
        return now >= station.due && wantsFull(station);
    });
    if (place == m_stations.end() || !fits(fullProbe(*place), now))
        return std::nullopt;
    return fullProbe(*place);
}

std::optional<Probe> ProbeSchedule::dueShort(Clock::time_point now) const
{
    if (now < m_nextShort || isFullOverdue(now))
        return std::nullopt;
    const auto place = earliest(&Station::last, [now](const Station &station) {
        return now >= station.due && station.times.slowest;
    });
    if (place == m_stations.end() || !fits(shortProbe(*place), now))
        return std::nullopt;
    return shortProbe(*place);
}

template <typename Condition>
ProbeSchedule::Stations::const_iterator ProbeSchedule::earliest(Clock::time_point Station::*time,
                                                                const Condition &isMeant) const
{
    auto best = m_stations.end();
    for (auto place = m_stations.begin(); place != m_stations.end(); ++place) {
        const bool isEarlier = best == m_stations.end() || place->second.*time < best->second.*time;
        if (isMeant(place->second) && isEarlier)
            best = place;
    }
    return best;
}

Clock::time_point ProbeSchedule::nextUrgent() const
{
    return m_lastBegin + INTERVAL_WHILE_NONE_IS_ONLINE;
}

void ProbeSchedule::ended(const Probe &probe, Clock::time_point begin, Clock::time_point end,
                          bool isAnyOnline)
{
    m_lastBegin = begin;
    if (isAnyOnline)
        spend(probe, begin, end);
    const auto place = m_stations.find(probe.station);
    if (place == m_stations.end())
        return;
    Station &station = place->second;
    station.last = end;
    station.due = end + station.pause.next();
    station.probes = probe.isFull ? 0 : station.probes + 1;
    if (probe.isFull)
        station.lastFull = end;
}

void ProbeSchedule::spend(const Probe &probe, Clock::time_point begin, Clock::time_point end)
{
    const Seconds cost = end - begin;
    while (!m_spent.empty() && m_spent.front().end < end - MINUTE)
        m_spent.pop_front();
    m_spent.push_back({end, end - begin});
    if (probe.isFull)
        m_nextFull = end + toDuration(cost * (Seconds(MINUTE) / restForFullProbes()));
    else
        m_nextShort = begin + toDuration(shortInterval(cost));
}

int ProbeSchedule::answeredStations() const
{
    return static_cast<int>(
        std::count_if(m_stations.begin(), m_stations.end(),
                      [](const auto &place) { return place.second.times.slowest.has_value(); }));
}

// Only as many stations as can be probed in each round get the time of full probes.
ProbeSchedule::Seconds ProbeSchedule::shortInterval(Seconds cost) const
{
    const int stations = std::max(answeredStations(), 1);
    if (stations > STATIONS_IN_ROUND)
        return cost / LOW_SHARE;
    return std::clamp(ROUND / stations, cost / HIGH_SHARE, cost / LOW_SHARE);
}

// Of each minute.
ProbeSchedule::Seconds ProbeSchedule::restForFullProbes() const
{
    const Seconds shortProbe = SHORTEST_TIMEOUT + OVERHEAD;
    const Seconds shortProbes = answeredStations() * shortProbe * (Seconds(MINUTE) / ROUND);
    return BUDGET - std::min<Seconds>(shortProbes, MINUTE * LOW_SHARE);
}

bool ProbeSchedule::wantsFull(const Station &station)
{
    return !station.times.slowest || station.probes >= FULL_EACH - 1;
}

Probe ProbeSchedule::fullProbe(const Stations::value_type &place)
{
    return {place.first, true, place.second.times.timeout};
}

Probe ProbeSchedule::shortProbe(const Stations::value_type &place)
{
    return {place.first, false, shortTimeout(place.second.times)};
}

// A probe that takes longer than all of a minute's time for probes is the only one in its minute.
bool ProbeSchedule::fits(const Probe &probe, Clock::time_point now) const
{
    Duration spent = {};
    for (const Spent &one : m_spent)
        spent += one.end >= now - MINUTE ? one.cost : Duration(0);
    const Seconds cost = probe.responseTimeout + OVERHEAD;
    return spent + std::min(cost, BUDGET) <= BUDGET;
}

bool ProbeSchedule::isFullOverdue(Clock::time_point now) const
{
    return now > m_nextFull + LONGEST_WAIT
           && std::any_of(m_stations.begin(), m_stations.end(), [&](const auto &place) {
                  return !place.second.times.slowest && now >= place.second.due;
              });
}

} // namespace velko
