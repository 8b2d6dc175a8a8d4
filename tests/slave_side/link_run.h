// A run of one link: random writes by the host's user, random faults, and the judge.
#pragma once

#include "host/core/session/link_session.h"
#include "tests/slave_side/judge.h"
#include "tests/slave_side/slaves.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace slave_side
{

/// A run ends when the link has reached one of the numbers.
struct RunLimits {
    std::int64_t writes;
    std::int64_t exchanges;
    std::chrono::seconds time;
};

class LinkRun : public velko::EventSink
{
public:
    /// `index`: of the link, from 0. Throws std::runtime_error.
    LinkRun(int index, unsigned seed, const Rates &rates);

    /// Reports what ends it early as a difference.
    void run(const RunLimits &limits) noexcept;

    const Judge &judge() const { return m_judge; }
    const Slaves &slaves() const { return m_slaves; }

    void receive(const velko::Event &event) override;

private:
    void burst();
    void give(const velko::Variable &variable);
    bool isOffline(int station) const;
    bool areResultsKnown() const;
    void settle();
    std::string randomText(const velko::Variable &variable);
    int random(int from, int to);

    std::mt19937 m_random;
    int m_counter; // of written words
    const int m_stations;
    Slaves m_slaves;
    Judge m_judge;
    int m_lastWrite = 0;

    mutable std::mutex m_mutex;  // guards the next three
    std::vector<Write> m_writes; // since the last settle()
    int m_strayResults = 0;      // of other writes
    std::set<int> m_offline;     // stations

    velko::LinkSession m_session; // the last member: its thread ends first
};

} // namespace slave_side
