#include "host/core/loop/station_talk.h"

#include "host/core/line/crc16.h"
#include "host/core/line/replies.h"
#include "host/core/sizes/frames.h"

namespace velko
{

namespace
{

// On two wires, a late answer would collide with the next request.
const int GUARD_TIME_WITH_CHECKS = 50; // milliseconds

// Answered check reads in a row after which the request that waits is taken for unanswered, so that
// a station which is never trusted again does not block the line.
const int MAX_CHECKS = 10;

const int READ_HALF = -1; // RW_VAR::rmwMark

Protocol protocolOf(int station, const CheckReads::Read &read)
{
    Protocol request;
    request.frame = read.frame;
    request.frameLen = read.frame.size();
    request.replyLen = read.responseLength;
    request.var.station = station;
    return request;
}

} // namespace

void StationTalk::load(const Link &link, const std::vector<PlannedRequest> &plan)
{
    m_link = &link;
    m_open.setLine(link.line);
    m_checks.load(link, plan);
}

StationTalk::Result StationTalk::ask(const Protocol &request)
{
    const int station = request.var.station;
    const ExchangeTimes times = {m_link->responseTimeoutOf(station), guardTimeOf(station)};
    const ResponseShape response = shapeOfResponse(request.frame, request.replyLen);
    m_port.awaitFrameGap();
    const bool isTrusted = !m_open.isUntrusted(station, response);
    if (isTrusted && !needsOtherAnswer(request))
        return exchange(REQUEST, request, times);
    if (m_checks.arePossible(station))
        return exchange(CHECK_READ, protocolOf(station, m_checks.next(station, m_open, response)),
                        times);
    if (!isTrusted) {
        awaitOldAnswers(station);
        m_port.awaitFrameGap();
    }
    return exchange(REQUEST, request, times);
}

StationTalk::Result StationTalk::probe(const Probe &probe)
{
    // A guard time would double the time that probes take from the other stations.
    const int guardTime = m_link->line.guardTime.value_or(0);
    const int timeout = static_cast<int>(probe.responseTimeout.count());
    m_port.awaitFrameGap();
    return exchange(PROBE, protocolOf(probe.station, m_checks.probe(probe.station, m_open)),
                    {timeout, guardTime});
}

// A value that is written back is read directly after an answer of another shape. So a copy of an
// earlier answer is not taken for it.
bool StationTalk::needsOtherAnswer(const Protocol &request) const
{
    if (request.var.rmwMark != READ_HALF)
        return false;
    const std::optional<ResponseShape> latest = m_open.latestFrame(request.var.station);
    return !latest || *latest == shapeOfResponse(request.frame, request.replyLen);
}

StationTalk::Result StationTalk::exchange(Kind kind, const Protocol &request,
                                          const ExchangeTimes &times)
{
    m_latestKind = kind;
    m_open.begin(request.frame, request.replyLen,
                 kind == REQUEST ? OpenRequests::REQUEST : OpenRequests::CHECK_READ);
    Result result{kind, request, m_port.exchange(request, times)};
    const std::optional<ResponseShape> latest = m_open.end();
    const QByteArray &reply = result.exchange.reply;
    result.isGood = reply.size() == request.replyLen && endsInItsCrc(reply);
    if (kind == REQUEST) {
        m_checksInRow = 0;
        return result;
    }
    const CheckReads::Result checked = resultOf(request, latest);
    const bool isOpen = m_open.isOpen(request.var.station);
    m_checks.ended(request.var.station, checked, isOpen);
    // An exception response that several requests could have had answers none of them.
    const bool isTaken =
        checked == CheckReads::ANSWERED || (checked == CheckReads::EXCEPTION && !isOpen);
    result.isAnswered = isTaken && ++m_checksInRow % MAX_CHECKS != 0;
    return result;
}

CheckReads::Result StationTalk::resultOf(const Protocol &check,
                                         const std::optional<ResponseShape> &latest)
{
    if (latest == shapeOfResponse(check.frame, check.replyLen))
        return CheckReads::ANSWERED;
    const bool isException = latest && (latest->function & EXCEPTION_FLAG) != 0;
    return isException ? CheckReads::EXCEPTION : CheckReads::UNANSWERED;
}

void StationTalk::awaitOldAnswers(int station)
{
    const milliseconds guardTime(guardTimeOf(station));
    const Clock::time_point end =
        m_open.lastSent(station).value_or(Clock::time_point()) + guardTime;
    m_port.listen(milliseconds(millisecondsUntil(end)));
    m_open.forget(station);
}

// Without check reads, only silence keeps a late answer from being taken for another one.
int StationTalk::guardTimeOf(int station) const
{
    const int otherwise =
        m_checks.arePossible(station) ? GUARD_TIME_WITH_CHECKS : m_link->responseTimeoutOf(station);
    return m_link->line.guardTime.value_or(otherwise);
}

} // namespace velko
