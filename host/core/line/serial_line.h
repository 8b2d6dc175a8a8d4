// A serial line: one request and its response at a time, with the frame gaps between them.
#pragma once

#include "host/core/line/byte_port.h"
#include "host/core/line/frame_judge.h"
#include "host/core/line/line_settings.h"
#include "host/core/line/line_tap.h"
#include "host/core/line/line_times.h"
#include "host/core/line/read_cut.h"
#include "host/core/line/response_filter.h"

#include <QByteArray>

#include <memory>
#include <string>

namespace velko
{

/// Times of one exchange, in milliseconds.
struct ExchangeTimes {
    int responseTimeout; ///< from the last byte of the request to the first byte of the response
    int guardTime;       ///< silence after a missing or truncated response
};

struct Exchange {
    enum Outcome {
        COMPLETE,    ///< a response that the judge accepts, or a damaged one in its full length
        TRUNCATED,   ///< a response without its last bytes
        NO_RESPONSE, ///< no byte of a response
        COLLISION,   ///< the echo differs from the request: another device sent at the same time
        NO_ECHO      ///< an adapter that should echo each request did not
    };

    Outcome outcome = NO_RESPONSE;
    QByteArray reply; ///< the response, for DataCom; empty if there is none
    /// From the last byte of the request to the first byte of the response; 0 if there is none.
    microseconds responseTime = {};
    bool isQuiet = true; ///< nothing was received, except frames of other stations
};

/// The thread that constructs the line uses it.
class SerialLine
{
public:
    /// `taps`, `judge` and `cut` are the caller's and outlive the line.
    SerialLine(std::unique_ptr<BytePort> port, const LineSettings &settings, const LineTaps &taps,
               FrameJudge &judge, const ReadCut &cut);

    /// Waits for the frame gap. The judge sees every whole frame that was received since the last
    /// exchange, so the caller can choose the next request by it. Throws PortError.
    void awaitFrameGap();

    /// Receives for some time. The judge sees every whole frame. Throws PortError.
    void listen(milliseconds time);

    /// Sends the frame and receives a response. Called directly after awaitFrameGap(). `replyLength`:
    /// bytes of a good response, at least 5. If the response is missing or truncated, returns after
    /// the guard time. Throws PortError.
    Exchange exchange(const QByteArray &frame, int replyLength, const ExchangeTimes &times);

    /// The device that is open.
    const std::string &device() const { return m_port->device(); }

private:
    void send(const QByteArray &frame);
    Exchange::Outcome takeEcho(const QByteArray &frame, ResponseFilter &filter,
                               const ExchangeTimes &times);
    Exchange receive(ResponseFilter &filter, const ExchangeTimes &times);
    void awaitResponse(ResponseFilter &filter, Clock::time_point deadline);
    void collectRest(ResponseFilter &filter, Clock::time_point deadline);
    int timeLeft(Clock::time_point end) const;
    void hear(ResponseFilter &filter, const QByteArray &bytes);
    void forgetRest();
    QByteArray read(int timeout);

    const std::unique_ptr<BytePort> m_port;
    const LineSettings m_settings;
    const LineTaps &m_taps;
    FrameJudge &m_judge;
    const ReadCut &m_cut;
    ResponseFilter m_between;     // bytes received between two exchanges
    Clock::time_point m_lastByte; // sent or received
    int m_asked = 0;              // the station of the request
    bool m_hasReceived = false;   // since the request was sent
    bool m_isCuttable = true;     // no response to a write is awaited
};

} // namespace velko
