// Writes from the moment they are offered until their fate is known.
#pragma once

#include "host/core/events/event.h"
#include "host/core/loading/driver_library.h"
#include "host/core/variables/variable.h"
#include "host/core/writes/request_reports.h"

#include <map>
#include <vector>

namespace velko
{

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

    /// Queues a write, or tells why it is refused. `obstacle` is such a reason; GOOD when there is
    /// none. `offers`: how often it is queued again after it was given up. True when it was queued.
    bool offer(const Variable &variable, const std::string &text, int maxRegs, int offers,
               const Verdict &obstacle);

    /// Tells what became of the writes that were reported. `verdict` is that on the last
    /// exchange; where `mayRepeat`, given-up writes that have offers left are queued again.
    std::vector<EndedWrite> settle(const std::vector<RequestReport> &reports,
                                   const Verdict &verdict, bool mayRepeat);

    /// Neither done nor failed yet.
    bool hasPending() const { return !m_pending.empty(); }
    std::vector<Variable> pending() const;

    /// Tells of all pending writes that they failed.
    std::vector<EndedWrite> endAll(const Verdict &verdict);

private:
    struct Pending {
        Variable variable;
        std::string text;
        QByteArray value;
        std::vector<WriteTarget> targets; // one for each record in the driver's queue
        int offersLeft;
    };

    bool hasRoom(size_t pieces) const;
    void supersede(int number, const Pending &newer);
    bool queue(int number, const Pending &write);
    int numberOf(const Variable &variable);
    void tell(const Pending &write, const char *state, const std::string &detail,
              Verdict::Kind cause = Verdict::GOOD);

    const DriverLibrary &m_driver;
    EventSink &m_sink;
    std::string m_link;
    // By name and place: after a reload a name may stand for another place, and both may have a write
    // under way. Never taken back, since reports may still come.
    std::map<std::string, int> m_numbers;
    std::map<int, Pending> m_pending;
};

} // namespace velko
