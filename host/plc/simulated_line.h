// The master's requests and the stations' responses on a pseudo-terminal.
#pragma once

#include "host/plc/outbox.h"
#include "host/plc/pseudo_terminal.h"

#include <QByteArray>

#include <chrono>
#include <string>

namespace velko
{

/// Used by one thread after its construction.
class SimulatedLine
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    struct Request {
        QByteArray frame;
        TimePoint arrival; ///< of the first byte
    };

    /// The path that a master opens.
    const std::string &device() const { return m_terminal.device(); }

    /// Waits for bytes. Returns true if bytes have arrived. Returns false if a byte of the outbox
    /// is due, if a silent interval may have ended a request, or after 20 ms, so that the caller
    /// can stop.
    bool waitForInput() const;

    /// Reads bytes up to the end of the present request. The next request remains in the terminal.
    void read();

    /// Removes and returns the received request. Its frame is empty if the request is not complete
    /// yet, or if a silent interval has ended it too early. `hadInput`: the result of waitForInput.
    Request takeRequest(bool hadInput);

    /// Sends bytes. Never blocks: if a master does not read, bytes are lost.
    void send(const QByteArray &bytes) const;

    /// The responses that wait, owned by this object.
    Outbox &outbox() { return m_outbox; }

private:
    PseudoTerminal m_terminal;
    Request m_incoming;
    TimePoint m_lastByte;
    Outbox m_outbox;
};

} // namespace velko
