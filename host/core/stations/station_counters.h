// What happened on the line, by station.
#pragma once

#include "host/core/events/verdict.h"
#include "host/core/line/line_times.h"
#include "host/core/line/serial_line.h"

#include <cstdint>
#include <map>

namespace velko
{

struct StationCounters {
    using Count = std::int64_t; // a panel runs for years

    Count sent = 0; ///< frames
    Count good = 0;
    Count noReply = 0;
    Count badCrc = 0;
    Count wrongLength = 0;
    Count collisions = 0;
    std::map<int, Count> exceptions; ///< by code
    Count retries = 0;
    Count givenUp = 0;
    microseconds meanResponse() const;
    microseconds worstResponse = {};

    /// One frame that was sent, and what became of it.
    void count(const Verdict &verdict, const Exchange &exchange);

private:
    Count m_responses = 0;
    microseconds m_responseTimes = {}; // sum
};

} // namespace velko
