// Writes whose results are not known yet.
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

/// A write as the user orders it.
struct WriteOrder {
    Variable variable;
    std::string text; ///< the value
    int number = 0;   ///< Event::write of the events of this write
};

/// A write whose result is known.
struct EndedWrite {
    Variable variable;
    bool isDone; ///< false: it failed
};

/// Used only on the communication thread, between two exchanges, so that the room found in the
/// driver's queue is still there when a write is added.
class WriteQueue
{
public:
    /// `driver` and `reporter` are the caller's and outlive this object.
    WriteQueue(const DriverLibrary &driver, const Reporter &reporter);

    /// Queues a write in pieces of at most `maxRegs` registers and returns true. If the write is
    /// refused, reports the reason and returns false. `obstacle`: a reason of the caller's; GOOD if
    /// there is none. A given-up write is queued again at most `repeats` times.
    bool add(const WriteOrder &order, int maxRegs, int repeats, const Verdict &obstacle);

    /// Reports the results of the writes that the driver has finished. `verdict`: that of the last
    /// exchange. `mayRepeat`: given-up writes may be queued again. Returns the writes that have
    /// ended.
    std::vector<EndedWrite> settle(const std::vector<RequestReport> &reports,
                                   const Verdict &verdict, bool mayRepeat);

    bool hasPending() const { return !m_pending.empty(); }

    /// Returns the variables of the pending writes.
    std::vector<Variable> pending() const;

    /// Reports every pending write as failed and returns all of them.
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
    // ownerTag of each variable, by name and place. After a reload a name may belong to another
    // place, and both places may have a queued write. Entries remain, because late reports need
    // them.
    std::map<std::string, int> m_owners;
    std::map<int, Pending> m_pending; // by ownerTag
};

} // namespace velko
