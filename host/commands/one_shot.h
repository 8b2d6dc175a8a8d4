// Options and loop of the sub-commands `read` and `write`.
#pragma once

#include "host/commands/interruption.h"
#include "host/commands/talk_options.h"
#include "host/core/events/event.h"
#include "host/core/links/link.h"
#include "host/core/loop/communication_loop.h"
#include "host/core/variables/variable.h"

#include <string>

namespace velko
{

/// The options -t, -r, -0 and -B, which describe a variable as mbpoll does.
class OneShotOptions
{
public:
    explicit OneShotOptions(CLI::App &options);

    /// Returns the variable that the options describe, without a name. Throws
    /// std::invalid_argument.
    Variable byReference(int station, int count, Access access) const;

    /// True if one of -t, -r and -0 was given.
    bool isByReference() const;

    /// The value of -r.
    int reference() const { return m_reference; }

private:
    CLI::App &m_options;
    std::string m_type = "4";
    int m_reference = 1;
    bool m_isFromZero = false;
    bool m_isBigEndian = false;
};

/// Runs a communication loop on this thread until its requests have ended. A LinkSession, with its
/// thread, has no advantage here: there is nothing else to do meanwhile.
class OneShotLoop : public EventSink
{
public:
    /// Reads each variable with its own requests, because the registers between two variables may
    /// not exist. Throws std::runtime_error.
    OneShotLoop(const TalkOptions &talk, const Link &link);

    /// Reads all variables of the link. Returns when each request has succeeded or is given up,
    /// without those to offline stations, or after the exchange in progress if the user interrupts
    /// it. Throws PortError.
    void readAll();

    /// Writes a variable. Prints the reason on standard error if the write fails. Returns an
    /// ExitStatus. If the user interrupts it, returns after the exchange in progress; no further
    /// write is possible then. Throws PortError.
    int write(const Variable &variable, const std::string &text);

    Interruption &interruption() { return m_interruption; }
    const CommunicationLoop &loop() const { return m_loop; }

    void receive(const Event &event) override;

private:
    bool turn();

    Event m_lastWrite;
    std::string m_portError;
    CommunicationLoop m_loop;
    Interruption m_interruption;
};

} // namespace velko
