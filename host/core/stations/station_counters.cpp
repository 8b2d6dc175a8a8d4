#include "host/core/stations/station_counters.h"

#include <algorithm>

namespace velko
{

microseconds StationCounters::meanResponse() const
{
    return m_responses > 0 ? m_responseTimes / m_responses : microseconds(0);
}

void StationCounters::count(const Verdict &verdict, const Exchange &exchange)
{
    ++sent;
    good += verdict.kind == Verdict::GOOD;
    noReply += verdict.kind == Verdict::NO_REPLY;
    badCrc += verdict.kind == Verdict::BAD_CRC;
    wrongLength += verdict.kind == Verdict::WRONG_LENGTH;
    collisions += verdict.kind == Verdict::COLLISION;
    if (verdict.kind == Verdict::EXCEPTION)
        ++exceptions[verdict.exception];
    retries += verdict.repeats;
    const bool isCut = verdict.kind == Verdict::NOT_SENT; // by the end of the program
    givenUp += verdict.kind != Verdict::GOOD && !verdict.repeats && !isCut;
    if (exchange.reply.isEmpty())
        return;
    ++m_responses;
    m_responseTimes += exchange.responseTime;
    worstResponse = std::max(worstResponse, exchange.responseTime);
}

} // namespace velko
