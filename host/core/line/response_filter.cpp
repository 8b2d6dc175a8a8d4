#include "host/core/line/response_filter.h"

#include "host/core/line/crc16.h"
#include "host/core/line/replies.h"
#include "host/core/sizes/frames.h"

namespace velko
{

ResponseFilter::ResponseFilter(FrameJudge &judge) : m_judge(judge) {}

ResponseFilter::ResponseFilter(FrameJudge &judge, const QByteArray &request, int responseLength)
    : m_judge(judge),
      m_request(request),
      m_responseLength(responseLength)
{
}

void ResponseFilter::add(const QByteArray &bytes, Clock::time_point arrival)
{
    if (m_bytes.isEmpty())
        m_begin = arrival;
    m_bytes.append(bytes);
    m_arrival = arrival;
    scan();
}

void ResponseFilter::gap()
{
    while (!m_bytes.isEmpty() && !hasBegun()) {
        drop(1, false);
        scan();
    }
}

bool ResponseFilter::hasBegun() const
{
    return !m_bytes.isEmpty() && beginsLikeResponse();
}

bool ResponseFilter::isComplete() const
{
    if (m_acceptedLength > 0)
        return true;
    // A longer frame of this station and function may be a late response to another request. Its
    // end decides.
    return hasBegun() && m_bytes.size() >= m_responseLength
           && m_bytes.size() >= frameLength(m_bytes);
}

QByteArray ResponseFilter::response() const
{
    if (!hasBegun())
        return QByteArray();
    return m_bytes.left(m_acceptedLength > 0 ? m_acceptedLength : m_responseLength);
}

std::vector<ResponseFilter::Dropped> ResponseFilter::takeDropped()
{
    std::vector<Dropped> dropped;
    dropped.swap(m_dropped);
    m_mayJoinNoise = false;
    return dropped;
}

QByteArray ResponseFilter::takeRest()
{
    QByteArray rest = m_bytes.mid(response().size());
    m_bytes.clear();
    m_acceptedLength = 0;
    return rest;
}

bool ResponseFilter::beginsLikeResponse() const
{
    return !m_request.isEmpty() && m_bytes.at(0) == m_request.at(0)
           && (m_bytes.size() < 2
               || (byteAt(m_bytes, 1) & ~EXCEPTION_FLAG) == byteAt(m_request, 1));
}

// The length of the whole frame at the beginning of the bytes, or 0. The driver finds the end of a
// response by the length that it expects, so a frame that ends there in its CRC is whole as well.
int ResponseFilter::wholeFrameLength() const
{
    const auto isWhole = [this](int length) {
        return length > 0 && m_bytes.size() >= length && endsInItsCrc(m_bytes.left(length));
    };
    const int length = frameLength(m_bytes);
    if (isWhole(length))
        return length;
    return beginsLikeResponse() && isWhole(m_responseLength) ? m_responseLength : 0;
}

// Number of leading bytes that can belong neither to the response nor to another frame.
int ResponseFilter::strayBytes() const
{
    const bool mayFollow = beginsLikeResponse() || m_bytes.size() < frameLength(m_bytes);
    return mayFollow ? 0 : 1;
}

void ResponseFilter::drop(int count, bool isFrame)
{
    const QByteArray bytes = m_bytes.left(count);
    m_bytes.remove(0, count);
    m_begin = m_arrival;
    if (!isFrame && m_mayJoinNoise)
        m_dropped.back() = {m_dropped.back().bytes + bytes, m_arrival, false};
    else
        m_dropped.push_back({bytes, m_arrival, isFrame});
    m_mayJoinNoise = !isFrame;
}

void ResponseFilter::scan()
{
    while (m_acceptedLength == 0 && !m_bytes.isEmpty()) {
        const int whole = wholeFrameLength();
        const bool isAccepted = whole > 0 && m_judge.isResponse(m_bytes.left(whole), m_arrival);
        if (isAccepted && !m_request.isEmpty()) {
            m_acceptedLength = whole;
            return;
        }
        const int foreign = whole > 0 ? whole : strayBytes();
        if (foreign == 0)
            return;
        drop(foreign, whole > 0);
    }
}

} // namespace velko
