// Finds the response to one request among the received bytes.
#pragma once

#include <QByteArray>

namespace velko
{

/// Drops all bytes that do not belong to the response: frames of other stations and functions, late
/// responses of another length or, after a write, of other registers, and noise. A response that
/// the driver will reject (wrong CRC, truncated) is a response here.
class ResponseFilter
{
public:
    /// `responseLength`: bytes of a good response, at least 5.
    ResponseFilter(const QByteArray &request, int responseLength);

    void add(const QByteArray &bytes);

    /// Called after an inter-character timeout: bytes that looked like the beginning of another
    /// station's frame are not one.
    void gap();

    /// True if the first byte of the response is received.
    bool hasBegun() const;

    /// True for a complete response or exception response: no more bytes are expected.
    bool isComplete() const;

    /// The response as far as it is received; empty if it has not begun.
    QByteArray response() const;

    /// Returns the bytes dropped since the last call.
    QByteArray takeDropped();

    /// Returns the bytes after the response, or all bytes if it has not begun. The last call.
    QByteArray takeRest();

private:
    bool beginsLikeResponse() const;
    bool isException() const;
    bool fitsRequest(int length) const;
    int foreignBytes() const;
    void drop(int count);
    void dropForeign();

    QByteArray m_request;
    int m_responseLength;
    QByteArray m_bytes;
    QByteArray m_dropped;
};

} // namespace velko
