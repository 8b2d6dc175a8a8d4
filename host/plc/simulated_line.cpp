#include "host/plc/simulated_line.h"

#include "host/plc/frames.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <utility>

namespace velko
{

namespace
{

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

// Ends a request of unknown length, and discards an incomplete one.
constexpr milliseconds SILENCE(20);
constexpr milliseconds STOP_CHECK(20);

} // namespace

bool SimulatedLine::waitForInput(const Outbox &outbox) const
{
    const Clock::time_point now = Clock::now();
    Clock::time_point until = std::min(now + STOP_CHECK, outbox.nextDue(now + STOP_CHECK));
    if (!m_incoming.frame.isEmpty())
        until = std::min(until, m_lastByte + SILENCE);
    const nanoseconds wait = std::max<nanoseconds>(until - now, nanoseconds(0));
    const timespec timeout = {0, static_cast<long>(wait.count())}; // less than a second
    pollfd input = {m_terminal.master(), POLLIN, 0};
    return ::ppoll(&input, 1, &timeout, nullptr) > 0;
}

void SimulatedLine::read()
{
    std::array<char, FRAME_BUFFER_BYTES> bytes;
    const int missing = requestLength(m_incoming.frame) - m_incoming.frame.size();
    const ssize_t got = ::read(m_terminal.master(), bytes.data(), static_cast<size_t>(missing));
    if (got <= 0)
        return;
    m_lastByte = Clock::now();
    if (m_incoming.frame.isEmpty())
        m_incoming.arrival = m_lastByte;
    m_incoming.frame.append(bytes.data(), static_cast<int>(got));
}

SimulatedLine::Request SimulatedLine::takeRequest(bool hadInput)
{
    const int length = requestLength(m_incoming.frame);
    const bool isSilent = !hadInput && Clock::now() >= m_lastByte + SILENCE;
    const bool isEndedBySilence = isSilent && length == UNKNOWN_LENGTH;
    const bool isWhole = m_incoming.frame.size() >= (isEndedBySilence ? SHORTEST_FRAME : length);
    Request request;
    if (isWhole || isSilent)
        std::swap(request, m_incoming);
    return isWhole ? request : Request();
}

void SimulatedLine::send(const QByteArray &bytes) const
{
    const ssize_t sent =
        ::write(m_terminal.master(), bytes.constData(), static_cast<size_t>(bytes.size()));
    static_cast<void>(sent);
}

} // namespace velko
