// Writes whose results are not known yet.
#pragma once

#include "host/core/driver/driver_link.h"
#include "host/core/events/event.h"
#include "host/core/events/reporter.h"
#include "host/core/events/verdict.h"
#include "host/core/stations/station_states.h"
#include "host/core/variables/variable.h"
#include "host/core/writes/request_reports.h"
#include "host/core/writes/written_registers.h"

#include <QByteArray>

#include <functional>
#include <list>
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
    int maxRegs = 0;  ///< maximum number of registers per request
    int repeats = 0;  ///< how many times it is queued again after it was given up
};

/// A write whose result is known.
struct EndedWrite {
    Variable variable;
    QByteArray value;    ///< bytes as for SetRegisterData
    Event::State result; ///< WRITE_DONE, WRITE_FAILED or WRITE_SUPERSEDED
};

/// Writes are executed in the order in which they were added. The driver would replace a queued
/// write by a newer one of the same target even when the older one has been sent, and would give up
/// both with one of them. So a write waits here, with all that follow it, until no other write in
/// the driver's queue touches its registers. Only a waiting write is superseded: it was never sent.
/// So the driver gets no more writes at a time than it sends in a row.
///
/// Used on the communication thread, between two exchanges.
class WriteQueue
{
public:
    /// `driver`, `stations` and `reporter` are the caller's and outlive this object.
    WriteQueue(DriverLink &driver, const StationStates &stations, const Reporter &reporter);

    /// Adds a write and returns true. If the write is refused, reports the reason and returns
    /// false. `obstacle`: a reason of the caller's; GOOD if there is none.
    bool add(const WriteOrder &order, const Verdict &obstacle);

    /// Reports the results of the writes that the driver has finished. `verdict`: that of the last
    /// exchange. `mayRepeat`: given-up writes may be queued again.
    void settle(const std::vector<RequestReport> &reports, const Verdict &verdict, bool mayRepeat);

    /// Reports the writes to a station that are not in the driver's queue yet as failed.
    void failWaiting(int station, const Verdict &verdict);
    /// Reports every pending write as failed. The driver's queue is empty.
    void failAll(const Verdict &verdict);

    bool hasPending() const { return !m_waiting.empty() || !m_queued.empty(); }

    /// Returns the writes that have ended since the last call, oldest first.
    std::vector<EndedWrite> takeEnded();

private:
    struct Pending {
        WriteOrder order;
        QByteArray value;
        int owner;  // ownerTag of its records in the driver's queue
        int pieces; // number of these records
    };
    using Waiting = std::list<Pending>;

    bool hasRoomFor(const Pending &write) const;
    void supersede(const Pending &newer);
    void feed();
    bool mustWait(const Pending &write) const;
    bool queue(const Pending &write);
    void failWaiting(const Verdict &verdict, const std::function<bool(const Pending &)> &isMeant);
    Waiting::iterator removeWaiting(Waiting::iterator place);
    int ownerOf(const Variable &variable);
    void refuse(const WriteOrder &order, const std::string &why, Verdict::Kind cause) const;
    void end(const Pending &write, Event::State state, const Verdict &verdict);

    DriverLink &m_driver;
    const StationStates &m_stations;
    const Reporter &m_reporter;
    // ownerTag of each variable, by name and place. After a reload a name may belong to another
    // place, and both places may have a queued write. Entries remain, because late reports need
    // them.
    std::map<std::string, int> m_owners;
    Waiting m_waiting;                            // in the order of the user
    std::map<int, Waiting::iterator> m_waitingOf; // by owner
    int m_waitingPieces = 0;
    std::map<int, Pending> m_queued; // in the driver's queue, by owner
    WrittenRegisters m_written;      // the registers of m_queued
    std::vector<EndedWrite> m_ended;
};

} // namespace velko
