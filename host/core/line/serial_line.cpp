#include "host/core/line/serial_line.h"

#include "host/core/line/replies.h"
#include "host/core/sizes/frames.h"

#include <algorithm>
#include <utility>

namespace velko
{

namespace
{

// Limit for a line that is never silent.
const int MAX_DISCARDS = 100;

const int MAX_BATCHES = 10; // in which a USB adapter delivers a frame

// Limit for a frame that does not end.
microseconds longestFrameTime(const LineSettings &settings)
{
    return wireTime(settings, LONGEST_FRAME)
           + MAX_BATCHES * milliseconds(interCharacterTimeout(settings));
}

const int CUT_INTERVAL = 250; // milliseconds between looks whether a read must end

} // namespace

SerialLine::SerialLine(std::unique_ptr<BytePort> port, const LineSettings &settings,
                       const LineTaps &taps, FrameJudge &judge, const ReadCut &cut)
    : m_port(std::move(port)),
      m_settings(settings),
      m_taps(taps),
      m_judge(judge),
      m_cut(cut),
      m_between(judge),
      m_lastByte(Clock::now())
{
}

void SerialLine::awaitFrameGap()
{
    for (int i = 0; i < MAX_DISCARDS; ++i) {
        Clock::sleepUntil(m_lastByte + frameGap(m_settings));
        const QByteArray late = read(0);
        if (late.isEmpty())
            return;
        hear(m_between, late);
    }
}

Exchange SerialLine::exchange(const QByteArray &frame, int replyLength, const ExchangeTimes &times)
{
    forgetRest();
    send(frame);
    m_asked = byteAt(frame, 0);
    m_hasReceived = false;
    m_isCuttable = byteAt(frame, 1) <= READ_INPUT_REGISTERS;
    ResponseFilter filter(m_judge, frame, replyLength);
    Exchange exchange;
    if (m_settings.echo)
        exchange.outcome = takeEcho(frame, filter, times);
    if (exchange.outcome == Exchange::NO_RESPONSE)
        exchange = receive(filter, times);
    m_isCuttable = true;
    m_taps.received(exchange.reply, filter.lastArrival());
    exchange.isQuiet =
        !m_hasReceived && exchange.reply.isEmpty() && exchange.outcome == Exchange::NO_RESPONSE;
    hear(m_between, filter.takeRest());
    if (exchange.outcome != Exchange::COMPLETE)
        listen(
            milliseconds(times.guardTime)); // a late response would collide with the next request
    return exchange;
}

// The system accepts the bytes at once. The line takes longer to send them.
void SerialLine::send(const QByteArray &frame)
{
    m_taps.sent(frame, Clock::now());
    m_port->write(frame);
    m_lastByte = Clock::now() + wireTime(m_settings, frame.size());
}

Exchange::Outcome SerialLine::takeEcho(const QByteArray &frame, ResponseFilter &filter,
                                       const ExchangeTimes &times)
{
    const Clock::time_point deadline = m_lastByte + milliseconds(times.responseTimeout);
    QByteArray echo;
    while (echo.size() < frame.size() && frame.startsWith(echo)) {
        const int left = timeLeft(deadline);
        if (left == 0)
            break;
        echo.append(read(left));
    }
    if (echo.isEmpty())
        return Exchange::NO_ECHO;
    if (!echo.startsWith(frame)) {
        m_taps.dropped(echo, Clock::now());
        return Exchange::COLLISION;
    }
    hear(filter, echo.mid(frame.size()));
    return Exchange::NO_RESPONSE;
}

Exchange SerialLine::receive(ResponseFilter &filter, const ExchangeTimes &times)
{
    const Clock::time_point sent = m_lastByte;
    const Clock::time_point deadline = sent + milliseconds(times.responseTimeout);
    awaitResponse(filter, deadline);
    Exchange exchange;
    if (!filter.hasBegun())
        return exchange;
    collectRest(filter, deadline);
    exchange.reply = filter.response();
    if (exchange.reply.isEmpty())
        return exchange;
    const auto delay = std::chrono::duration_cast<microseconds>(filter.firstArrival() - sent);
    exchange.responseTime = std::max(delay, microseconds(0));
    exchange.outcome = filter.isComplete() ? Exchange::COMPLETE : Exchange::TRUNCATED;
    return exchange;
}

// Waits for the first byte of the response. A frame that is arriving at the deadline is received to
// its end: it may be a late response to an earlier request.
void SerialLine::awaitResponse(ResponseFilter &filter, Clock::time_point deadline)
{
    const int pause = interCharacterTimeout(m_settings);
    const Clock::time_point end = std::max(deadline, Clock::now()) + longestFrameTime(m_settings);
    while (!filter.hasBegun()) {
        const bool isArriving =
            !filter.isEmpty() && Clock::now() < filter.lastArrival() + milliseconds(pause);
        const int left = timeLeft(isArriving ? end : deadline);
        if (left == 0) {
            filter.gap(); // the response may have begun after what looked like another frame
            hear(filter, QByteArray());
            return;
        }
        hear(filter, read(filter.isEmpty() ? left : std::min(left, pause)));
    }
}

// Receives the rest of the response. The time limit is for a line that is never silent.
void SerialLine::collectRest(ResponseFilter &filter, Clock::time_point deadline)
{
    const int pause = interCharacterTimeout(m_settings);
    Clock::time_point end = Clock::now() + longestFrameTime(m_settings);
    while (!filter.isComplete() && Clock::now() < end) {
        const QByteArray bytes = read(pause);
        if (bytes.isEmpty())
            return;
        hear(filter, bytes);
        if (filter.hasBegun())
            continue;
        awaitResponse(filter, deadline); // the bytes were a late response to another request
        end = Clock::now() + longestFrameTime(m_settings);
    }
}

void SerialLine::listen(milliseconds time)
{
    const int pause = interCharacterTimeout(m_settings);
    const Clock::time_point end = Clock::now() + time;
    for (int left = timeLeft(end); left > 0; left = timeLeft(end))
        hear(m_between, read(m_between.isEmpty() ? left : std::min(left, pause)));
}

int SerialLine::timeLeft(Clock::time_point end) const
{
    const int left = millisecondsUntil(end);
    if (!m_isCuttable)
        return left;
    return m_cut.isDue() ? 0 : std::min(left, CUT_INTERVAL);
}

// Adds bytes to the filter, or ends an incomplete frame if there are none after a pause. Reports
// what is dropped at once, with its time.
void SerialLine::hear(ResponseFilter &filter, const QByteArray &bytes)
{
    const Clock::time_point pause =
        filter.lastArrival() + milliseconds(interCharacterTimeout(m_settings));
    if (!bytes.isEmpty())
        filter.add(bytes, Clock::now());
    else if (Clock::now() >= pause)
        filter.gap();
    for (const ResponseFilter::Dropped &dropped : filter.takeDropped()) {
        m_taps.dropped(dropped.bytes, dropped.arrival);
        // Another station that is late does not show that this one is there.
        const bool isOfAnother = dropped.isFrame && byteAt(dropped.bytes, 0) != m_asked;
        m_hasReceived = m_hasReceived || !isOfAnother;
    }
}

// What is still incomplete before a request is noise.
void SerialLine::forgetRest()
{
    m_taps.dropped(m_between.takeRest(), m_between.lastArrival());
}

QByteArray SerialLine::read(int timeout)
{
    QByteArray bytes = m_port->read(timeout);
    if (bytes.isEmpty())
        return bytes;
    m_lastByte = std::max(m_lastByte, Clock::now());
    return bytes;
}

} // namespace velko
