// Writes from the moment they are given until their results are known.
#pragma once

#include "host/core/events/event.h"
#include "host/core/events/reporter.h"
#include "host/core/events/verdict.h"
#include "host/core/loading/driver_library.h"
#include "host/core/variables/variable.h"
#include "host/core/writes/request_reports.h"

#include <QByteArray>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace velko
{

/// What a user asks for.
struct WriteOrder {
    Variable variable;
    std::string text; ///< the value
    int number = 0;   ///< returned in the write's events
};

/// A write whose result is known.
struct EndedWrite {
    Variable variable;
    bool isDone;
};

/// Used only on the communication thread, between two exchanges: what it finds out about the driver's
/// queue still holds when it adds to it.
class WriteQueue
{
public:
    /// Both outlive the queue.
    WriteQueue(const DriverLibrary &driver, const Reporter &reporter);

    /// Queues a write in pieces of at most `maxRegs` registers, or reports why it is refused.
    /// `obstacle` is such a reason; GOOD if there is none. A write that is given up is queued again at
    /// most `repeats` times. True if it was queued.
    bool add(const WriteOrder &order, int maxRegs, int repeats, const Verdict &obstacle);

    /// Reports the results of the writes that the driver has finished. `verdict` is that of the last
    /// exchange. If `mayRepeat`, given-up writes are queued again as often as they may be.
    std::vector<EndedWrite> settle(const std::vector<RequestReport> &reports,
                                   const Verdict &verdict, bool mayRepeat);

    bool hasPending() const { return !m_pending.empty(); }

    /// Variables of the writes whose results are not known yet.
    std::vector<Variable> pending() const;

    /// Reports every pending write as failed.
    std::vector<EndedWrite> failAll(const Verdict &verdict);

private:
    struct Pending {
        WriteOrder order;
        QByteArray value;
        std::vector<WriteTarget> targets; // one for each record in the driver's queue
        int repeatsLeft;
    };

    bool hasRoom(size_t pieces) const;
    void supersede(int owner, const Pending &newer);
    bool queue(int owner, const Pending &write);
    int ownerOf(const Variable &variable);
    void report(const WriteOrder &order, Event::State state, const std::string &detail,
                Verdict::Kind cause = Verdict::GOOD) const;

    const DriverLibrary &m_driver;
    const Reporter &m_reporter;
    // ownerTag of each variable, by name and place: after a reload a name may stand for another place,
    // and both may have a queued write. Never removed, since reports may still come.
    std::map<std::string, int> m_owners;
    std::map<int, Pending> m_pending; // by ownerTag
};

} // namespace velko
