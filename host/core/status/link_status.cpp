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
    case Freshness::STATION_OFF:
        return "station off";
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

void LinkStatus::setOn(int station, bool isOn)
{
    const Lock lock(m_mutex);
    StationStatus &status = m_stations[station];
    if (status.isOn == isOn)
        return;
    status.isOn = isOn;
    if (isOn) {
        status.timeOff += Clock::now() - m_offSince[station];
    } else {
        ++status.timesOff;
        m_offSince[station] = Clock::now();
    }
}

void LinkStatus::setStaleAfter(milliseconds age)
{
    const Lock lock(m_mutex);
    m_staleAfter = age;
}

void LinkStatus::setWriting(const std::vector<Variable> &variables)
{
    const Lock lock(m_mutex);
    m_writing = variables;
}

void LinkStatus::count(int station, const Verdict &verdict, const Exchange &exchange)
{
    const Lock lock(m_mutex);
    m_stations[station].counters.count(verdict, exchange);
}

void LinkStatus::readEnded(int station, const RegisterSpan &span, const Verdict &verdict)
{
    const Lock lock(m_mutex);
    if (verdict.kind == Verdict::GOOD)
        m_registers.good(station, span);
    else
        m_registers.refused(station, span, verdict);
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
    const auto station = m_stations.find(variable.station);
    ValueState state;
    state.refusal = registers.refusal;
    if (registers.lastGood)
        state.age = std::chrono::duration_cast<milliseconds>(Clock::now() - *registers.lastGood);
    if (station != m_stations.end() && !station->second.isOn)
        state.freshness = Freshness::STATION_OFF;
    else if (!state.age)
        state.freshness = Freshness::NEVER_READ;
    else if (state.refusal.kind != Verdict::GOOD || *state.age > m_staleAfter || !m_isPortOpen)
        state.freshness = Freshness::STALE;
    else
        state.freshness = Freshness::GOOD;
    if (state.freshness == Freshness::GOOD && isWriting(variable)) {
        state.freshness = Freshness::STALE;
        state.refusal = {Verdict::NOT_SENT, 0, false, "a write is under way"};
    }
    return state;
}

bool LinkStatus::isWriting(const Variable &variable) const
{
    const RegisterSpan span = registersOf(variable);
    return std::any_of(m_writing.begin(), m_writing.end(), [&](const Variable &written) {
        const RegisterSpan other = registersOf(written);
        return written.station == variable.station && other.area == span.area
               && other.first <= span.last && span.first <= other.last;
    });
}

std::vector<StationStatus> LinkStatus::stations() const
{
    const Lock lock(m_mutex);
    std::vector<StationStatus> stations;
    for (const auto &[number, status] : m_stations) {
        stations.push_back(status);
        stations.back().station = number;
        if (!status.isOn)
            stations.back().timeOff += Clock::now() - m_offSince.at(number);
    }
    return stations;
}

bool LinkStatus::isOn(int station) const
{
    const Lock lock(m_mutex);
    const auto place = m_stations.find(station);
    return place == m_stations.end() || place->second.isOn;
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

std::int64_t LinkStatus::cycles() const
{
    const Lock lock(m_mutex);
    return m_cycles;
}

} // namespace velko
