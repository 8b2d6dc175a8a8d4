// The master's requests and the stations' responses on a pseudo-terminal.
#pragma once

#include "host/core/line/clock.h"
#include "host/plc/outbox.h"
#include "host/plc/pseudo_terminal.h"

#include <QByteArray>

#include <string>

namespace velko
{

/// Used by one thread after its construction.
class SimulatedLine
{
public:
    struct Request {
        QByteArray frame;
        Clock::time_point arrival; ///< of the first byte
    };

    /// The path that a master opens.
    const std::string &device() const { return m_terminal.device(); }

    /// Waits for bytes. Returns true if bytes have arrived. Returns false if a byte of `outbox` is
    /// due, if a silent interval may have ended a request, or after 20 ms, so that the caller
    /// can stop.
    bool waitForInput(const Outbox &outbox) const;

    /// Reads bytes up to the end of the present request. The next request remains in the terminal.
    void read();

    /// Removes and returns the received request. Its frame is empty if the request is not complete
    /// yet, or if a silent interval has ended it too early. `hadInput`: the result of waitForInput.
    Request takeRequest(bool hadInput);

    /// Sends bytes. Never blocks: if a master does not read, bytes are lost.
    void send(const QByteArray &bytes) const;

private:
    PseudoTerminal m_terminal;
    Request m_incoming;
    Clock::time_point m_lastByte;
};

} // namespace velko
