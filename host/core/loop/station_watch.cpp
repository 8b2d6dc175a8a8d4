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

StationWatch::StationWatch(DriverLink &driver, StationStates &states, const Reporter &reporter)
    : m_driver(driver),
      m_states(states),
      m_reporter(reporter)
{
}

void StationWatch::load(const Link &link)
{
    m_stations = link.stations();
    m_variables = link.variables;
    m_states.restartProbes();
    m_states.keepOnly(m_stations);
}

bool StationWatch::isInLink(int station) const
{
    return std::binary_search(m_stations.begin(), m_stations.end(), station);
}

void StationWatch::beginTurn(bool mayProbe)
{
    m_states.endClearing(m_driver.queuedWrites() == 0);
    if (!mayProbe)
        return;
    if (const std::optional<int> station = m_states.beginProbe())
        probe(*station);
}

// The station's next cyclic request is the probe, so that the order of the requests does not
// change. Only a station without cyclic reads needs an additional request.
void StationWatch::probe(int station)
{
    const auto isThere = [station](const Variable &variable) {
        return variable.station == station;
    };
    const auto isReadThere = [&](const Variable &variable) {
        return isThere(variable) && variable.isRead();
    };
    if (std::any_of(m_variables.begin(), m_variables.end(), isReadThere))
        return;
    const auto variable = std::find_if(m_variables.begin(), m_variables.end(), isThere);
    if (variable != m_variables.end())
        m_driver.readOnce(*variable);
}

void StationWatch::exchangeEnded(int station, const Verdict &verdict, bool isQuiet)
{
    m_hasReceived = m_hasReceived || !isQuiet || verdict.kind != Verdict::NO_REPLY;
    const StationStates::State state = m_states.state(station);
    if (state == StationStates::PROBING)
        probeEnded(station, verdict);
    else if (state == StationStates::ONLINE)
        watchSilence(station, verdict);
}

void StationWatch::probeEnded(int station, const Verdict &verdict)
{
    if (verdict.kind == Verdict::NO_REPLY) {
        m_states.probeFailed(station);
        return;
    }
    const Clock::duration absence = m_states.probeSucceeded(station);
    m_reporter.report(Event::STATION_ONLINE, std::to_string(station),
                      "it responds again after " + secondsText(absence));
}

// A station goes offline only if no byte was received in any attempt, not even noise or a foreign
// frame.
void StationWatch::watchSilence(int station, const Verdict &verdict)
{
    if (verdict.kind != Verdict::NO_REPLY || verdict.repeats || m_hasReceived || !isInLink(station))
        return;
    m_states.beginClearing(station, m_driver.queuedWrites());
    m_reporter.report(Event::STATION_OFFLINE, std::to_string(station),
                      "no response; it is probed at growing intervals");
}

void StationWatch::requestEnded(const RW_VAR &request)
{
    m_hasReceived = false;
    if (request.ownerTag >= 0)
        m_states.writeEnded();
}

} // namespace velko
