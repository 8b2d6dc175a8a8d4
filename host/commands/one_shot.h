// Reading and writing once, for scripts: what the two sub-commands share.
#pragma once

#include "host/commands/line_options.h"
#include "host/commands/talk_options.h"
#include "host/core/loop/communication_loop.h"

namespace velko
{

/// What is read or written: variables by their names, or mbpoll's -t, -r and -c.
class OneShotOptions
{
public:
    explicit OneShotOptions(CLI::App &options);

    /// The one that -t, -r and -c describe. Throws std::invalid_argument.
    Variable byReference(int station, int count, Access access) const;

    /// One of them was given.
    bool isByReference() const;

    /// As -r counts: the register's number on the line and the first reference's difference.
    int reference() const { return m_reference; }

private:
    CLI::App &m_options;
    std::string m_type = "4";
    int m_reference = 1;
    bool m_isFromZero = false;
    bool m_isBigEndian = false;
};

/// A loop that runs on this thread until what is asked of it is done. Keeps the last write's event.
class OneShotLoop : public EventSink
{
public:
    /// Each variable is read with requests of its own: what lies between two of them may not be
    /// there. Throws std::runtime_error.
    OneShotLoop(const TalkOptions &talk, const Link &link);

    /// Each request is answered or given up. Throws PortError.
    void readAll();

    /// EXIT_GOOD when the write was carried out; else what went wrong is printed. Throws PortError.
    int write(const Variable &variable, const std::string &text);

    const CommunicationLoop &loop() const { return m_loop; }

    void tell(const Event &event) override;

private:
    void run(bool (OneShotLoop::*isDone)() const);
    bool isRead() const { return m_loop.status().cycles() > 0; }
    bool isWritten() const { return !m_loop.hasPendingWrites(); }

    Event m_lastWrite;
    std::string m_portError;
    CommunicationLoop m_loop;
};

} // namespace velko
