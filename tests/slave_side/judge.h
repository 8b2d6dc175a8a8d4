// Compares what the host reports with what the slaves have carried out.
#pragma once

#include "host/core/events/event.h"
#include "host/core/session/snapshot.h"
#include "tests/slave_side/slaves.h"

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace slave_side
{

/// A write, as the host's user gave it, and its result.
struct Write {
    int number = 0;
    velko::Variable variable;
    std::string text;
    std::vector<Cell> cells;
    Clock::time_point given;
    Clock::time_point ended = {}; ///< when its first result was reported
    velko::Event result = {};     ///< the first one
    int results = 0;              ///< number of final results
    // The judge's:
    bool isReceived = false;    ///< a slave has received a request for it
    std::set<int> written = {}; ///< registers that were written between `given` and `ended`
};

/// Used by one thread. Prints the differences with the last entries of the log.
class Judge
{
public:
    using Counts = std::map<std::string, std::int64_t>;

    /// `title`: seed and link, for the output.
    Judge(std::string title, int stations);

    /// Compares writes whose results are known with the slaves' log since the last call.
    void judgeWrites(const std::vector<Write> &writes, const std::vector<LogEntry> &log);

    /// Compares the values that are good. `isSettled`: the results of all writes were known before
    /// the snapshot, and judgeWrites() has seen them. If not, compares only read-only registers.
    void judgeValues(const velko::Snapshot &snapshot, bool isSettled);

    /// Reports a difference. The last log entries up to the time `until` are printed.
    void report(const std::string &kind, const std::string &what,
                Clock::time_point until = Clock::now());

    const Counts &differences() const { return m_differences; } ///< by kind
    const Counts &results() const { return m_results; }         ///< numbers of writes
    std::int64_t values() const { return m_values; }            ///< number of values compared

private:
    struct Register {
        int content;
        int mayBe0, mayBe1; // bits, according to the results
    };

    void replay(const LogEntry &entry);
    bool explains(const Write &write, const LogEntry &entry) const;
    void judgeResult(const Write &write);
    void judgeContents();
    bool isRight(const velko::Variable &variable, const Cell &cell);

    const std::string m_title;
    const Clock::time_point m_start = Clock::now();
    Counts m_differences;
    Counts m_results;
    std::int64_t m_values = 0;
    std::map<std::pair<int, int>, Register> m_registers;         // by station and register address
    std::map<std::pair<std::string, int>, std::int64_t> m_ticks; // latest, of read-only registers
    std::set<std::string> m_wrongValues;                         // that were reported
    std::deque<Write> m_writes;                                  // that a request may belong to
    std::deque<LogEntry> m_log;                                  // the latest entries
};

} // namespace slave_side
