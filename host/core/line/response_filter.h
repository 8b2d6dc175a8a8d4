// Finds whole frames among the received bytes, and the response to one request.
#pragma once

#include "host/core/line/frame_judge.h"
#include "host/core/line/line_times.h"

#include <QByteArray>

#include <vector>

namespace velko
{

/// Shows every whole frame to the judge. Drops all bytes that do not belong to the response: frames
/// that the judge does not accept, and noise. Keeps a response with a wrong CRC and a truncated one,
/// which the driver rejects. Used by one thread.
class ResponseFilter
{
public:
    /// Bytes that do not belong to the response: a whole frame, or noise.
    struct Dropped {
        QByteArray bytes;
        Clock::time_point arrival; ///< of the last byte
        bool isFrame = false;      ///< a whole frame
    };

    /// For the time between two exchanges: no frame is a response. `judge` is the caller's and
    /// outlives the filter.
    explicit ResponseFilter(FrameJudge &judge);
    /// `request`: at least station and function. `responseLength`: bytes of a good response, at
    /// least 5.
    ResponseFilter(FrameJudge &judge, const QByteArray &request, int responseLength);

    /// Adds received bytes.
    void add(const QByteArray &bytes, Clock::time_point arrival);

    /// Ends an incomplete frame that is not a response to the request. Called after an
    /// inter-character timeout.
    void gap();

    /// True if there are no bytes that are neither taken nor dropped.
    bool isEmpty() const { return m_bytes.isEmpty(); }

    /// True if the first byte of the response is received.
    bool hasBegun() const;

    /// True if a response is received that the judge accepts, or a damaged one in its full length.
    bool isComplete() const;

    /// The response as far as it is received; empty if it has not begun.
    QByteArray response() const;

    /// When the first byte of the response arrived. Only if it has begun.
    Clock::time_point firstArrival() const { return m_begin; }
    /// When the last byte arrived.
    Clock::time_point lastArrival() const { return m_arrival; }

    /// Returns what was dropped since the last call, oldest first.
    std::vector<Dropped> takeDropped();

    /// Returns the bytes after the response, or all bytes if it has not begun, and forgets them with
    /// the response.
    QByteArray takeRest();

private:
    bool beginsLikeResponse() const;
    int wholeFrameLength() const;
    int strayBytes() const;
    void drop(int count, bool isFrame);
    void scan();

    FrameJudge &m_judge;
    QByteArray m_request;
    int m_responseLength = 0;
    QByteArray m_bytes;
    Clock::time_point m_begin = {};   // arrival of the first of m_bytes
    Clock::time_point m_arrival = {}; // of the last byte
    int m_acceptedLength = 0;         // bytes of the accepted response; 0: there is none yet
    std::vector<Dropped> m_dropped;
    bool m_mayJoinNoise = false; // the last entry of m_dropped is noise
};

} // namespace velko
