#include "host/core/loop/station_watch.h"

#include <algorithm>

namespace velko
{

namespace
{

std::string secondsText(Clock::duration duration)
{
    const auto tenths = std::chrono::duration_cast<milliseconds>(duration).count() / 100;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
}

} // namespace

StationWatch::StationWatch(const DriverLink &driver, StationStates &states,
                           const OpenRequests &open, const Reporter &reporter)
    : m_driver(driver),
      m_states(states),
      m_open(open),
      m_reporter(reporter)
{
}

void StationWatch::load(const Link &link, const std::vector<PlannedRequest> &plan)
{
    m_link = &link;
    m_stations = link.stations();
    m_polled.clear();
    for (const PlannedRequest &request : plan)
        if (m_polled.empty() || m_polled.back() != request.var.station)
            m_polled.push_back(request.var.station);
    m_states.keepOnly(m_stations);
    m_schedule = ProbeSchedule();
    m_sinceProbe.load(plan);
}

bool StationWatch::isInLink(int station) const
{
    return std::binary_search(m_stations.begin(), m_stations.end(), station);
}

bool StationWatch::isAnyPolled() const
{
    return std::any_of(m_polled.begin(), m_polled.end(),
                       [this](int station) { return m_states.isOnline(station); });
}

bool StationWatch::isAnyOnline() const
{
    return std::any_of(m_stations.begin(), m_stations.end(),
                       [this](int station) { return m_states.isOnline(station); });
}

std::vector<int> StationWatch::endClearing()
{
    return m_states.endClearing(m_driver.queuedWrites() == 0);
}

std::optional<Probe> StationWatch::dueProbe()
{
    const std::vector<int> offline = m_states.offlineStations();
    if (offline.empty())
        return std::nullopt;
    for (const int station : offline)
        m_schedule.set(station, {milliseconds(m_link->responseTimeoutOf(station)),
                                 m_open.slowestResponse(station)});
    const std::optional<Probe> probe = m_schedule.due(isAnyOnline(), Clock::now());
    return probe && m_sinceProbe.isComplete(m_states) ? probe : std::nullopt;
}

void StationWatch::probeEnded(const Probe &probe, Clock::time_point begin, bool isAnswered)
{
    const bool wasAnyOnline = isAnyOnline();
    m_schedule.ended(probe, begin, Clock::now(), wasAnyOnline);
    m_sinceProbe.restart();
    if (!isAnswered)
        return;
    m_schedule.remove(probe.station);
    if (!wasAnyOnline)
        m_schedule.restart(); // the others may be back as well
    const Clock::duration absence = m_states.takeOnline(probe.station);
    m_reporter.report(Event::STATION_ONLINE, std::to_string(probe.station),
                      "it responds again after " + secondsText(absence));
}

milliseconds StationWatch::untilNextProbe() const
{
    if (m_schedule.isEmpty())
        return milliseconds::max();
    return milliseconds(millisecondsUntil(m_schedule.nextUrgent()));
}

// A station goes offline only if no byte was received in any attempt, not even noise or a foreign
// frame.
void StationWatch::exchangeEnded(const RW_VAR &request, const Verdict &verdict, bool isQuiet)
{
    const int station = request.station;
    m_hasReceived = m_hasReceived || !isQuiet || verdict.kind != Verdict::NO_REPLY;
    if (!m_states.isOnline(station) || verdict.repeats || m_hasReceived || !isInLink(station))
        return;
    // A write that has just been given up has left the queue, and its end is still to be noted.
    const int ended = request.ownerTag >= 0 ? 1 : 0;
    m_states.beginClearing(station, m_driver.queuedWrites() + ended);
    m_reporter.report(Event::STATION_OFFLINE, std::to_string(station),
                      "no response; it is probed from time to time");
}

// A late answer also counts as the slowest one, so the next probe waits longer. A station that is
// later than its response timeout stays offline.
void StationWatch::heard(const std::set<int> &stations)
{
    for (const int station : stations)
        if (m_states.state(station) == StationStates::OFFLINE)
            m_schedule.hasten(station);
}

void StationWatch::requestEnded(const RW_VAR &request)
{
    m_hasReceived = false;
    m_sinceProbe.ended(request);
    if (request.ownerTag >= 0)
        m_states.writeEnded();
}

} // namespace velko
