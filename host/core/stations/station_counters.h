// Counters of one station.
#pragma once

#include "host/core/events/verdict.h"
#include "host/core/line/line_times.h"
#include "host/core/line/serial_line.h"

#include <cstdint>
#include <map>

namespace velko
{

/// Has no lock: its owner guards it.
struct StationCounters {
    using Count = std::int64_t; // a panel runs for years

    Count sent = 0; ///< request frames
    Count good = 0;
    Count noReply = 0;
    Count badCrc = 0;
    Count wrongLength = 0;
    Count collisions = 0;
    std::map<int, Count> exceptions; ///< by code
    Count retries = 0;               ///< failures after which the driver repeats the frame
    Count givenUp = 0;               ///< failures without a repetition
    /// Mean response time; 0 without a response.
    microseconds meanResponse() const;
    microseconds worstResponse = {}; ///< longest response time

    /// Counts a frame that was sent, with its result.
    void count(const Verdict &verdict, const Exchange &exchange);

private:
    Count m_responses = 0;
    microseconds m_responseTimes = {}; // sum
};

} // namespace velko
