// The serial line: one request and its answer at a time, and the rests between them.
#pragma once

#include "host/core/line/answer_filter.h"
#include "host/core/line/line_tap.h"
#include "host/core/line/serial_port.h"

namespace velko
{

struct Exchange {
    enum Outcome {
        ANSWERED, ///< a whole answer or an exception reply
        CUT,      ///< the beginning of an answer
        NOTHING,
        COLLISION, ///< the echo was not what was sent: another device sent at the same time
        NO_ECHO
    };

    Outcome outcome = NOTHING;
    QByteArray reply;               ///< what the driver is to judge
    microseconds responseTime = {}; ///< from the request's last byte to the answer's first
    bool isQuiet = true;            ///< no byte came at all
};

class SerialLine
{
public:
    /// Opens the port, `lastSeen` as in findPort. `taps` is the caller's and outlives the line. One
    /// thread opens and uses it. Throws PortError.
    SerialLine(const LineSettings &settings, const LineTaps &taps,
               const AdapterIdentity &lastSeen = {});

    /// Waits for silence, sends the frame and collects the answer of `replyLength` bytes (5 or more).
    /// After an answer that did not come, or not whole, the line has rested for the guard time when
    /// this returns. Throws PortError.
    Exchange exchange(const QByteArray &frame, int replyLength);

    const std::string &device() const { return m_port.device(); }

private:
    void settle();
    void send(const QByteArray &frame);
    Exchange::Outcome takeEcho(const QByteArray &frame, AnswerFilter &filter);
    Exchange receive(AnswerFilter &filter);
    void await(AnswerFilter &filter, Clock::time_point deadline);
    void collect(AnswerFilter &filter, Clock::time_point deadline);
    void rest();
    QByteArray read(int timeout);

    const LineSettings m_settings;
    const LineTaps &m_taps;
    SerialPort m_port;
    Clock::time_point m_lastByte; // on the wire, in either direction
    bool m_wasHeard = false;      // since the request was sent
};

} // namespace velko
