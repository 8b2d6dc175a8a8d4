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

    /// Returns true when bytes have arrived. Returns false when a byte of the outbox is due, when a
    /// silent interval may have ended a request, or after 20 ms, so that the caller can stop.
    bool waitForInput() const;

    /// Reads bytes up to the end of the present request; the next one remains in the terminal.
    void read();

    /// Removes the received request. An empty frame: it is not complete, or was an incomplete one
    /// that a silent interval has ended. `hadInput`: the result of waitForInput.
    Request takeRequest(bool hadInput);

    /// Never blocks: if a master does not read, bytes are lost, as on any line.
    void send(const QByteArray &bytes) const;

    Outbox &outbox() { return m_outbox; }

private:
    PseudoTerminal m_terminal;
    Request m_incoming;
    TimePoint m_lastByte;
    Outbox m_outbox;
};

} // namespace velko
