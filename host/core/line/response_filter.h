// Finds the response to one request among the received bytes.
#pragma once

#include <QByteArray>

namespace velko
{

/// Drops all bytes that do not belong to the response: frames of other stations and functions, late
/// responses of another length or, after a write, of other registers, and noise. Keeps a response
/// with a wrong CRC and a truncated one, which the driver rejects. Used by one thread.
class ResponseFilter
{
public:
    /// `request`: at least station and function. `responseLength`: bytes of a good response, at
    /// least 5.
    ResponseFilter(const QByteArray &request, int responseLength);

    /// Adds received bytes.
    void add(const QByteArray &bytes);

    /// Ends an incomplete frame of another station. Called after an inter-character timeout.
    void gap();

    /// True if the first byte of the response is received.
    bool hasBegun() const;

    /// True if a complete response or exception response is received.
    bool isComplete() const;

    /// The response as far as it is received; empty if it has not begun.
    QByteArray response() const;

    /// Returns the bytes dropped since the last call.
    QByteArray takeDropped();

    /// Returns the bytes after the response, or all bytes if it has not begun. Must be the last
    /// call.
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
