// The communication loop: what the driver asks for goes out, what comes back is handed to it.
#pragma once

#include "host/driver_library.h"
#include "host/read_states.h"
#include "host/serial_line.h"

struct LineCounters {
    int sent = 0;
    int good = 0;
    int repeated = 0;
    int givenUp = 0;
};

/// "Frames: 3 sent, 2 good, 1 repeated, 0 given up"
std::string textOf(const LineCounters &counters);

class CommunicationLoop
{
public:
    /// All three are the caller's and outlive the loop.
    CommunicationLoop(const DriverLibrary &driver, ComInfo &link, SerialLine &line);

    /// At most one exchange; none when this turn had nothing to send. That is no sign of having
    /// finished: writes may still be queued. One thread calls this.
    void turn();

    /// Makes these variables the cyclic list and takes turns until each was read, for
    /// `milliseconds` at the most; false when that time ran out. Not by ComInfo's cycleDone: on a
    /// line that loses an answer now and then that may never come true.
    bool readAll(const std::vector<Variable> &variables, int milliseconds);

    /// Of the reads since readAll was called.
    const ReadStates &reads() const { return m_reads; }

    const LineCounters &counters() const { return m_counters; }

private:
    void count(int resultCode);
    bool areRead(const std::vector<Variable> &variables) const;

    const DriverLibrary &m_driver;
    ComInfo &m_link;
    SerialLine &m_line;
    ReadStates m_reads;
    LineCounters m_counters;
};
