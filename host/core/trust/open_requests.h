// The requests that each station may still answer. Modbus RTU numbers no requests, so a late answer
// could be taken for the response to a later request. But a station answers in order.
#pragma once

#include "host/core/line/frame_judge.h"
#include "host/core/line/line_settings.h"
#include "host/core/line/line_times.h"
#include "host/core/trust/response_shape.h"

#include <QByteArray>

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace velko
{

/// Survives the port: a station may answer when the port is open again. Used on the communication
/// thread.
class OpenRequests : public FrameJudge
{
public:
    enum Purpose { REQUEST, CHECK_READ };

    /// Sets the line, for the times of requests and responses on it.
    void setLine(const LineSettings &line) { m_line = line; }

    /// A request is about to be sent. Its response is awaited until end(). `responseLength`: bytes
    /// of a good response.
    void begin(const QByteArray &request, int responseLength, Purpose purpose);
    /// The exchange has ended. Without its response, the request stays open. Returns the shape of
    /// the last frame that the station has sent since begin(); no value if there is none.
    std::optional<ResponseShape> end();

    /// A response that fits several open requests is taken for the oldest one. This request and all
    /// older ones are no longer open. An exception response names no more than its function, so it
    /// is taken only if a single open request has this function. Returns true if the awaited
    /// response has come: no request is open any more.
    bool isResponse(const QByteArray &frame, Clock::time_point arrival) override;

    /// True if a request with this response may get an answer that belongs to another one: a request
    /// is open, or the station has sent a frame that nobody awaited. Becomes false when a response
    /// is taken and no request is open any more. A station that sends each response twice would stay
    /// untrusted. So a copy of the answer to a check read counts only for the same shape.
    bool isUntrusted(int station, const ResponseShape &response) const;

    /// True if a request to the station may still be answered.
    bool isOpen(int station) const;

    /// Forgets the open requests of a station. For a station that cannot be checked.
    void forget(int station);

    /// True if an open request awaits a response of this shape.
    bool awaits(int station, const ResponseShape &response) const;
    /// Position of the first one among the open requests, from the oldest one; their number if there
    /// is none.
    size_t firstPosition(int station, const ResponseShape &response) const;
    /// The shape of the latest frame of a station. No value if there is none.
    std::optional<ResponseShape> latestFrame(int station) const;

    /// The longest response time of the station, also of a late response. No value if it never
    /// answered.
    std::optional<milliseconds> slowestResponse(int station) const;

    /// When the latest request was sent to a station. No value if none was.
    std::optional<Clock::time_point> lastSent(int station) const;

    /// Returns the stations that have sent a whole frame since the last call.
    std::set<int> takeHeard();

private:
    struct Entry {
        ResponseShape response;
        QByteArray registers;   // of a write: address and count, which its response repeats
        int count;              // equal requests in a row
        Clock::time_point sent; // the latest of them, when its last byte was sent
    };
    using Entries = std::vector<Entry>;

    struct Station {
        Entries open;                       // oldest first
        std::optional<ResponseShape> stray; // a frame that nobody awaited
        std::optional<ResponseShape> check; // the answer to a check read, if it was the last answer
        std::optional<ResponseShape> latestFrame;
        std::optional<milliseconds> slowest;
        std::optional<Clock::time_point> lastSent;
    };

    static bool fits(const Entry &entry, const QByteArray &frame);
    static Entries::iterator placeOf(Entries &open, const QByteArray &frame);
    static Entries::iterator placeOfException(Entries &open, int function);
    static void noteStray(Station &station, const ResponseShape &stray);
    static void noteTrust(Station &station, const ResponseShape &answer, bool isCheck);

    LineSettings m_line;
    std::map<int, Station> m_stations; // by number
    std::optional<int> m_asked;        // the station of the exchange in progress
    std::optional<ResponseShape> m_latestOfAsked;
    Purpose m_purpose = REQUEST; // of the exchange in progress
    std::set<int> m_heard;
};

} // namespace velko
