// The serial line: one request and its response at a time, with the frame gaps between them.
#pragma once

#include "host/core/line/line_settings.h"
#include "host/core/line/line_tap.h"
#include "host/core/line/line_times.h"
#include "host/core/line/port_finder.h"
#include "host/core/line/response_filter.h"
#include "host/core/line/serial_port.h"

#include <QByteArray>

#include <string>

namespace velko
{

struct Exchange {
    enum Outcome {
        COMPLETE,  ///< a complete response or exception response
        TRUNCATED, ///< a truncated response
        NO_RESPONSE,
        COLLISION, ///< the echo differs from the request: another device sent at the same time
        NO_ECHO
    };

    Outcome outcome = NO_RESPONSE;
    QByteArray reply; ///< for the driver's judgement
    microseconds responseTime =
        {};              ///< from the last byte of the request to the first of the response
    bool isQuiet = true; ///< no byte was received
};

class SerialLine
{
public:
    /// Opens the port; `lastSeen` as in findPort. `taps` outlives the line. The same thread opens
    /// and uses the line. Throws PortError.
    SerialLine(const LineSettings &settings, const LineTaps &taps,
               const AdapterIdentity &lastSeen = {});

    /// Waits for the frame gap, sends the frame and receives a response of `replyLength` bytes (at
    /// least 5). After a missing or truncated response it returns at the end of the guard time.
    /// Throws PortError.
    Exchange exchange(const QByteArray &frame, int replyLength);

    const std::string &device() const { return m_port.device(); }

private:
    void awaitFrameGap();
    void send(const QByteArray &frame);
    Exchange::Outcome takeEcho(const QByteArray &frame, ResponseFilter &filter);
    Exchange receive(ResponseFilter &filter);
    void awaitResponse(ResponseFilter &filter, Clock::time_point deadline);
    void collectRest(ResponseFilter &filter, Clock::time_point deadline);
    void keepGuardTime();
    QByteArray read(int timeout);

    const LineSettings m_settings;
    const LineTaps &m_taps;
    SerialPort m_port;
    Clock::time_point m_lastByte; // on the line, in either direction
    bool m_hasReceived = false;   // since the request was sent
};

} // namespace velko
