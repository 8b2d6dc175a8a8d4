#include "host/core/line/response_filter.h"

#include "host/core/line/crc16.h"
#include "host/core/line/replies.h"
#include "host/core/sizes/frames.h"

namespace velko
{

ResponseFilter::ResponseFilter(const QByteArray &request, int responseLength)
    : m_request(request),
      m_responseLength(responseLength)
{
}

void ResponseFilter::add(const QByteArray &bytes)
{
    m_bytes.append(bytes);
    dropForeign();
}

void ResponseFilter::gap()
{
    while (!m_bytes.isEmpty() && !hasBegun()) {
        drop(1);
        dropForeign();
    }
}

bool ResponseFilter::hasBegun() const
{
    return !m_bytes.isEmpty() && beginsLikeResponse();
}

bool ResponseFilter::isComplete() const
{
    if (!hasBegun())
        return false;
    if (isException())
        return true;
    // A longer frame of this station and function may be a late response to another request. Its
    // end decides.
    return m_bytes.size() >= m_responseLength
           && (m_bytes.size() >= frameLength(m_bytes)
               || endsInItsCrc(m_bytes.left(m_responseLength)));
}

QByteArray ResponseFilter::response() const
{
    if (!hasBegun())
        return QByteArray();
    return m_bytes.left(isException() ? EXCEPTION_BYTES : m_responseLength);
}

QByteArray ResponseFilter::takeRest()
{
    QByteArray rest = m_bytes.mid(response().size());
    m_bytes.clear();
    return rest;
}

QByteArray ResponseFilter::takeDropped()
{
    QByteArray dropped;
    dropped.swap(m_dropped);
    return dropped;
}

bool ResponseFilter::beginsLikeResponse() const
{
    return m_bytes.at(0) == m_request.at(0)
           && (m_bytes.size() < 2
               || (byteAt(m_bytes, 1) & ~EXCEPTION_FLAG) == byteAt(m_request, 1));
}

bool ResponseFilter::isException() const
{
    return isExceptionTo(m_request, m_bytes.left(EXCEPTION_BYTES));
}

// The response to a write contains its register addresses. The response to a read can only be
// recognised by its length.
bool ResponseFilter::fitsRequest(int length) const
{
    return length == m_responseLength
           && (byteAt(m_request, 1) != WRITE_MULTIPLE_REGISTERS
               || m_bytes.mid(2, 4) == m_request.mid(2, 4));
}

// Number of leading bytes that cannot belong to the response.
int ResponseFilter::foreignBytes() const
{
    if (isException())
        return 0;
    const int length = frameLength(m_bytes);
    const bool isFrame =
        length > 0 && m_bytes.size() >= length && endsInItsCrc(m_bytes.left(length));
    if (beginsLikeResponse())
        return isFrame && !fitsRequest(length) ? length : 0;
    if (isFrame)
        return length;
    return m_bytes.size() < length ? 0 : 1; // the rest of a frame may follow
}

void ResponseFilter::drop(int count)
{
    m_dropped.append(m_bytes.left(count));
    m_bytes.remove(0, count);
}

void ResponseFilter::dropForeign()
{
    while (!m_bytes.isEmpty()) {
        const int count = foreignBytes();
        if (count == 0)
            return;
        drop(count);
    }
}

} // namespace velko
