// Writes from the moment they are offered until their fate is known.
#pragma once

#include "host/library/driver_library.h"
#include "host/loop/event.h"
#include "host/loop/request_reports.h"
#include "host/variables/variable.h"

#include <map>
#include <vector>

/// A write whose end is known.
struct EndedWrite {
    Variable variable;
    bool isDone;
};

/// Used on the communication thread alone, between two exchanges: so that what it finds out about the
/// queue still holds when it adds to it.
class WriteDesk
{
public:
    /// Both outlive the desk.
    WriteDesk(const DriverLibrary &driver, EventSink &sink, const std::string &link);

    /// Queues a write, or tells why it is refused. `obstacle` is such a reason; empty when there is
    /// none. `offers`: how often it is queued again after it was given up. True when it was queued.
    bool offer(const Variable &variable, const std::string &text, int maxRegs, int offers,
               const std::string &obstacle);

    /// Tells what became of the writes that were reported. `verdict` is that on the last
    /// exchange; where `mayRepeat`, given-up writes that have offers left are queued again.
    std::vector<EndedWrite> settle(const std::vector<RequestReport> &reports,
                                   const Verdict &verdict, bool mayRepeat);

    /// Neither done nor failed yet.
    bool hasPending() const { return !m_pending.empty(); }
    bool hasPending(int station) const;

private:
    struct Pending {
        Variable variable;
        std::string text;
        QByteArray value;
        int pieces; // records in the driver's queue
        int offersLeft;
    };

    bool hasRoom(int pieces) const;
    bool queue(int number, const Pending &write);
    int numberOf(const std::string &name);
    void tell(const Pending &write, const char *state, const std::string &detail,
              Verdict::Kind cause = Verdict::GOOD);

    const DriverLibrary &m_driver;
    EventSink &m_sink;
    std::string m_link;
    std::map<std::string, int> m_numbers; // never taken back: reports may still be under way
    std::map<int, Pending> m_pending;
};
