#include "host/core/line/serial_line.h"

#include "host/core/sizes/frames.h"

#include <algorithm>
#include <thread>

namespace velko
{

namespace
{

// Limit for a line that is never silent.
const int MAX_DISCARDS = 100;

const int MAX_BATCHES = 10; // in which a USB adapter delivers a frame

} // namespace

SerialLine::SerialLine(const LineSettings &settings, const LineTaps &taps,
                       const AdapterIdentity &lastSeen)
    : m_settings(settings),
      m_taps(taps),
      m_port(settings, lastSeen),
      m_lastByte(Clock::now())
{
}

Exchange SerialLine::exchange(const QByteArray &frame, int replyLength)
{
    awaitFrameGap();
    send(frame);
    m_hasReceived = false;
    ResponseFilter filter(frame, replyLength);
    Exchange exchange;
    if (m_settings.echo)
        exchange.outcome = takeEcho(frame, filter);
    if (exchange.outcome == Exchange::NO_RESPONSE)
        exchange = receive(filter);
    m_taps.dropped(filter.takeDropped());
    m_taps.received(exchange.reply);
    m_taps.dropped(filter.takeRest());
    exchange.isQuiet = !m_hasReceived;
    if (exchange.outcome != Exchange::COMPLETE)
        keepGuardTime();
    return exchange;
}

// Drops the bytes received since the last exchange. The frame gap begins after them.
void SerialLine::awaitFrameGap()
{
    for (int i = 0; i < MAX_DISCARDS; ++i) {
        std::this_thread::sleep_until(m_lastByte + frameGap(m_settings));
        const QByteArray late = read(0);
        if (late.isEmpty())
            return;
        m_taps.dropped(late);
    }
}

// The system accepts the bytes at once. The line takes longer to send them.
void SerialLine::send(const QByteArray &frame)
{
    m_taps.sent(frame);
    m_port.write(frame);
    m_lastByte = Clock::now() + wireTime(m_settings, frame.size());
}

Exchange::Outcome SerialLine::takeEcho(const QByteArray &frame, ResponseFilter &filter)
{
    const Clock::time_point deadline = m_lastByte + milliseconds(m_settings.responseTimeout);
    QByteArray echo;
    while (echo.size() < frame.size() && frame.startsWith(echo)) {
        const int left = millisecondsUntil(deadline);
        const QByteArray bytes = left > 0 ? read(left) : QByteArray();
        if (bytes.isEmpty())
            break;
        echo.append(bytes);
    }
    if (echo.isEmpty())
        return Exchange::NO_ECHO;
    if (!echo.startsWith(frame)) {
        m_taps.dropped(echo);
        return Exchange::COLLISION;
    }
    m_hasReceived = echo.size() > frame.size();
    filter.add(echo.mid(frame.size()));
    return Exchange::NO_RESPONSE;
}

Exchange SerialLine::receive(ResponseFilter &filter)
{
    const Clock::time_point sent = m_lastByte;
    const Clock::time_point deadline = sent + milliseconds(m_settings.responseTimeout);
    awaitResponse(filter, deadline);
    Exchange exchange;
    if (!filter.hasBegun())
        return exchange;
    const auto delay = std::chrono::duration_cast<microseconds>(Clock::now() - sent);
    exchange.responseTime = std::max(delay, microseconds(0));
    collectRest(filter, deadline);
    exchange.reply = filter.response();
    exchange.outcome = exchange.reply.isEmpty() ? Exchange::NO_RESPONSE
                       : filter.isComplete()    ? Exchange::COMPLETE
                                                : Exchange::TRUNCATED;
    return exchange;
}

// Waits for the first byte of the response.
void SerialLine::awaitResponse(ResponseFilter &filter, Clock::time_point deadline)
{
    const int pause = interCharacterTimeout(m_settings);
    Clock::time_point lastByte = Clock::now();
    while (!filter.hasBegun()) {
        const int left = millisecondsUntil(deadline);
        if (left == 0) {
            filter.gap(); // the response may have begun after what looked like another frame
            return;
        }
        const QByteArray bytes = read(std::min(left, pause));
        if (!bytes.isEmpty()) {
            filter.add(bytes);
            lastByte = Clock::now();
        } else if (Clock::now() - lastByte >= milliseconds(pause)) {
            filter.gap();
        }
    }
}

// Receives the rest of the response. The time limit is for a line that is never silent.
void SerialLine::collectRest(ResponseFilter &filter, Clock::time_point deadline)
{
    const int pause = interCharacterTimeout(m_settings);
    const Clock::time_point end =
        Clock::now() + wireTime(m_settings, LONGEST_FRAME) + MAX_BATCHES * milliseconds(pause);
    while (!filter.isComplete() && Clock::now() < end) {
        const QByteArray bytes = read(pause);
        if (bytes.isEmpty())
            return;
        filter.add(bytes);
        if (!filter.hasBegun()) // the bytes were a late response to another request
            awaitResponse(filter, deadline);
    }
}

// Drops late responses: a late response would be mistaken for the response to the next request.
void SerialLine::keepGuardTime()
{
    const milliseconds guard(m_settings.guardTime.value_or(m_settings.responseTimeout));
    const Clock::time_point end = Clock::now() + guard;
    for (int left = millisecondsUntil(end); left > 0; left = millisecondsUntil(end))
        m_taps.dropped(read(left));
}

QByteArray SerialLine::read(int timeout)
{
    QByteArray bytes = m_port.read(timeout);
    if (bytes.isEmpty())
        return bytes;
    m_lastByte = std::max(m_lastByte, Clock::now());
    m_hasReceived = true;
    return bytes;
}

} // namespace velko
