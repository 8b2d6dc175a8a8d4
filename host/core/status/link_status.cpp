#include "host/core/status/link_status.h"

#include <algorithm>

namespace velko
{

using Lock = std::lock_guard<std::mutex>;

const char *nameOf(Freshness freshness)
{
    switch (freshness) {
    case Freshness::GOOD:
        return "good";
    case Freshness::STALE:
        return "stale";
    case Freshness::STATION_OFFLINE:
        return "station offline";
    default:
        return "never read";
    }
}

void LinkStatus::setPort(bool isOpen, const std::string &text)
{
    const Lock lock(m_mutex);
    m_isPortOpen = isOpen;
    m_portText = text;
}

void LinkStatus::setStaleAfter(milliseconds age)
{
    const Lock lock(m_mutex);
    m_staleAfter = age;
}

void LinkStatus::setAwaited(int station, bool isWrite)
{
    const Lock lock(m_mutex);
    m_awaitedStation = station;
    m_isWriteAwaited = isWrite;
}

void LinkStatus::writeBegins(const Variable &variable)
{
    const Lock lock(m_mutex);
    m_registers.writeBegins(variable.station, registersOf(variable));
}

void LinkStatus::writeEnds(const Variable &variable)
{
    const Lock lock(m_mutex);
    m_registers.writeEnds(variable.station, registersOf(variable));
}

void LinkStatus::count(int station, const Verdict &verdict, const Exchange &exchange)
{
    const Lock lock(m_mutex);
    m_counters[station].count(verdict, exchange);
}

void LinkStatus::readEnded(int station, const RegisterSpan &span, const Verdict &verdict)
{
    const Lock lock(m_mutex);
    if (verdict.kind == Verdict::GOOD)
        m_registers.good(station, span);
    else
        m_registers.failed(station, span, verdict);
}

void LinkStatus::cycleEnded()
{
    const Lock lock(m_mutex);
    ++m_cycles;
}

ValueState LinkStatus::stateOf(const Variable &variable) const
{
    const Lock lock(m_mutex);
    const RegisterState registers = m_registers.stateOf(variable);
    ValueState state;
    state.lastAttempt = registers.lastAttempt;
    if (registers.lastGood)
        state.age = std::chrono::duration_cast<milliseconds>(Clock::now() - *registers.lastGood);
    state.freshness = freshnessOf(variable, state);
    if (state.freshness == Freshness::GOOD && m_registers.isWriting(variable)) {
        state.freshness = Freshness::STALE;
        state.lastAttempt = Verdict(Verdict::NOT_SENT, "a write is in progress");
    }
    return state;
}

Freshness LinkStatus::freshnessOf(const Variable &variable, const ValueState &state) const
{
    if (!m_stationStates.isOnline(variable.station))
        return Freshness::STATION_OFFLINE;
    if (!state.age)
        return Freshness::NEVER_READ;
    const bool isFailed = state.lastAttempt.kind != Verdict::GOOD;
    return isFailed || *state.age > m_staleAfter || !m_isPortOpen ? Freshness::STALE
                                                                  : Freshness::GOOD;
}

std::vector<StationStatus> LinkStatus::stations() const
{
    const Lock lock(m_mutex);
    std::vector<StationStatus> stations;
    for (const auto &[number, counters] : m_counters) {
        const StationPresence presence = m_stationStates.presenceOf(number);
        stations.push_back(
            {number, presence.isOnline, presence.timesOffline, presence.timeOffline, counters});
    }
    return stations;
}

bool LinkStatus::isPortOpen() const
{
    const Lock lock(m_mutex);
    return m_isPortOpen;
}

std::string LinkStatus::portText() const
{
    const Lock lock(m_mutex);
    return m_portText;
}

std::string LinkStatus::awaitedText() const
{
    const Lock lock(m_mutex);
    if (m_awaitedStation == 0)
        return std::string();
    return "station " + std::to_string(m_awaitedStation) + " to answer a "
           + (m_isWriteAwaited ? "write" : "read");
}

std::int64_t LinkStatus::cycles() const
{
    const Lock lock(m_mutex);
    return m_cycles;
}

} // namespace velko
