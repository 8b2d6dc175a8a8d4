#include "tests/slave_side/link_run.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <thread>

namespace slave_side
{

namespace
{

using std::chrono::milliseconds;
using velko::Access;
using velko::Event;
using velko::Variable;
using Lock = std::lock_guard<std::mutex>;

const milliseconds RESPONSE_TIMEOUT(20);
const milliseconds QUIET(500); // for waiting requests and late responses
const std::chrono::seconds LONGEST_WAIT(60);

// Several variables have common registers or bits. Six registers are more than the maxRegs of some
// links.
const std::vector<const char *> WRITABLE = {
    "7:100", "7:101", "10:50", "1:200.3", "1:201.6", "4:202",   "7:102:u16:6", "7:103",
    "10:52", "7:120", "10:60", "1:260.0", "1:260.7", "1:261.7", "4:261",       "4:265"};
// Several requests have responses of the same length.
const std::vector<const char *> READ_ONLY = {"6:140:u16:3", "6:144", "6:146:u16:2", "6:152:u16:3",
                                             "7:140:u16:3", "7:144", "7:148:u16:2", "7:152:u16:3"};

velko::Link linkTo(const std::string &device, int stations, int index)
{
    static const int maxRegs[] = {4, 20, 6};
    velko::Link link;
    link.name = "link " + std::to_string(index + 1);
    link.line.devices = {device};
    link.line.baudRate = 115200;
    link.line.responseTimeout = static_cast<int>(RESPONSE_TIMEOUT.count());
    link.line.interCharacterTimeout = 10;
    link.maxRegs = maxRegs[index % 3];
    link.retries = 2 + index % 2;
    link.queueAgain = index / 2 % 2;
    link.staleAfter = 2000;
    const auto add = [&link](int station, Access access, const std::string &place) {
        link.variables.push_back(velko::parseVariable(place, station, access));
        link.variables.back().name = std::to_string(station) + "/" + place;
    };
    for (int station = 1; station <= stations; ++station) {
        for (const char *const place : WRITABLE)
            add(station, Access::READ_WRITE, place);
        for (const char *const place : READ_ONLY)
            add(station, Access::READ, place);
    }
    return link;
}

} // namespace

LinkRun::LinkRun(int index, unsigned seed, const Rates &rates)
    : m_random(seed + 1000U * static_cast<unsigned>(index)),
      m_counter(random(0, WHOLE_REGISTER)),
      m_stations(3),
      m_slaves(m_stations, RESPONSE_TIMEOUT, rates, seed + 7U * static_cast<unsigned>(index)),
      m_judge("seed " + std::to_string(seed) + ", link " + std::to_string(index + 1), m_stations),
      m_session(DRIVER_LIBRARY, linkTo(m_slaves.device(), m_stations, index), {}, *this)
{
}

void LinkRun::run(const RunLimits &limits) noexcept
{
    try {
        m_session.start();
        const Clock::time_point end = Clock::now() + limits.time;
        while (m_lastWrite < limits.writes && m_slaves.requests() < limits.exchanges
               && Clock::now() < end) {
            for (int bursts = random(3, 20); bursts > 0; --bursts)
                burst();
            settle();
        }
        std::this_thread::sleep_for(QUIET);
        settle();
        m_session.stop();
        if (m_strayResults > 0)
            m_judge.report("results after the result",
                           std::to_string(m_strayResults) + " in the whole run");
    } catch (const std::exception &error) {
        m_judge.report("the run ended early", error.what());
    }
}

// Some bursts go to one station, some to all. Few writes go to an offline station.
void LinkRun::burst()
{
    const int chosen = random(0, m_stations);
    for (int writes = random(1, 6); writes > 0; --writes) {
        const int station = chosen > 0 ? chosen : random(1, m_stations);
        const int place = random(0, static_cast<int>(WRITABLE.size()) - 1);
        const size_t index = static_cast<size_t>(station - 1) * (WRITABLE.size() + READ_ONLY.size())
                             + static_cast<size_t>(place);
        const bool isEager = random(0, 9) == 0;
        if (isEager || !isOffline(station))
            give(m_session.link()->variables.at(index));
    }
    std::this_thread::sleep_for(milliseconds(random(0, 20)));
    m_judge.judgeValues(m_session.snapshot(), false);
}

void LinkRun::give(const Variable &variable)
{
    const std::string text = randomText(variable);
    ++m_lastWrite;
    {
        const Lock lock(m_mutex); // before its first event
        m_writes.push_back({m_lastWrite, variable, text, cellsOf(variable, text), Clock::now()});
    }
    if (m_session.write(variable.name, text) != m_lastWrite)
        throw std::runtime_error("a write of " + variable.name + " has an unexpected number");
}

void LinkRun::receive(const Event &event)
{
    const Clock::time_point now = Clock::now();
    const Lock lock(m_mutex);
    if (event.state == Event::STATION_OFFLINE)
        m_offline.insert(std::stoi(event.name));
    if (event.state == Event::STATION_ONLINE)
        m_offline.erase(std::stoi(event.name));
    if (event.write == 0 || event.state == Event::WRITE_QUEUED_AGAIN)
        return;
    const auto place = std::find_if(m_writes.begin(), m_writes.end(), [&](const Write &write) {
        return write.number == event.write;
    });
    if (place == m_writes.end())
        ++m_strayResults;
    else if (++place->results == 1) {
        place->ended = now;
        place->result = event;
    }
}

bool LinkRun::isOffline(int station) const
{
    const Lock lock(m_mutex);
    return m_offline.count(station) > 0;
}

bool LinkRun::areResultsKnown() const
{
    const Lock lock(m_mutex);
    return m_session.isIdle()
           && std::all_of(m_writes.begin(), m_writes.end(),
                          [](const Write &write) { return write.results > 0; });
}

void LinkRun::settle()
{
    const Clock::time_point end = Clock::now() + LONGEST_WAIT;
    while (!areResultsKnown() && Clock::now() < end)
        std::this_thread::sleep_for(milliseconds(1));
    const velko::Snapshot snapshot = m_session.snapshot();
    std::vector<Write> writes;
    {
        const Lock lock(m_mutex);
        writes.swap(m_writes);
    }
    m_judge.judgeWrites(writes, m_slaves.takeLog());
    m_judge.judgeValues(snapshot, true);
}

// Words are numbered, so that a request in the log belongs to one write. Half of the values for
// limited registers are refused.
std::string LinkRun::randomText(const Variable &variable)
{
    const std::vector<Cell> cells = cellsOf(variable, "0");
    if (cells.front().mask != WHOLE_REGISTER)
        return std::to_string(random(0, 255) & (variable.kind < 3 ? 1 : 255));
    const int end = isLimited(cells.front().address) ? 2 * HIGHEST_LIMITED : WHOLE_REGISTER;
    std::string text;
    for (int i = 0; i < variable.count; ++i) {
        std::int64_t value = ++m_counter % end;
        if (cells.size() > 1) // a double word
            value = value << 16 | ++m_counter % end;
        text += std::to_string(value) + " ";
    }
    text.pop_back();
    return text;
}

int LinkRun::random(int from, int to)
{
    return std::uniform_int_distribution<>(from, to)(m_random);
}

} // namespace slave_side
