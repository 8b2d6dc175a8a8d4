// The communication loop: what the driver asks for goes out, what comes back is handed to it.
#pragma once

#include "host/driver_library.h"
#include "host/serial_line.h"

struct LineCounters {
    int sent = 0;
    int good = 0;
    int repeated = 0;
    int givenUp = 0;
};

enum class Turn { Nothing, Good, Repeated, GivenUp };

class CommunicationLoop
{
public:
    /// All three are the caller's and outlive the loop.
    CommunicationLoop(const DriverLibrary &driver, ComInfo &link, SerialLine &line);

    /// At most one exchange. Turn::Nothing means that this turn had nothing to send; writes may
    /// still be queued, so it is no sign of having finished. One thread calls this.
    Turn turn();

    /// Turns until the cyclic list has been read once more, for `milliseconds` at the most; false
    /// when that time ran out. Writes and one-shot reads must not be under way.
    bool readAll(int milliseconds, const QList<VAR_ITEM> &items);

    const LineCounters &counters() const { return m_counters; }

private:
    Turn judge(int resultCode);

    const DriverLibrary &m_driver;
    ComInfo &m_link;
    SerialLine &m_line;
    LineCounters m_counters;
};
