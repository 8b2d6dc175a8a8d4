// What happened on the line, by station.
#pragma once

#include "host/loop/verdict.h"

#include <map>

struct StationCounters {
    int sent = 0; ///< frames
    int good = 0;
    int noReply = 0;
    int badCrc = 0;
    int wrongLength = 0;
    int collisions = 0;
    std::map<int, int> exceptions; ///< by code
    int retries = 0;
    int givenUp = 0;
    microseconds meanResponse() const;
    microseconds worstResponse = {};

    /// One frame that was sent, and what became of it.
    void count(const Verdict &verdict, const Exchange &exchange);

private:
    microseconds m_responses = {};
    int m_answers = 0;
};
