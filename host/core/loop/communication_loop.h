// The communication loop of one link: sends what the driver asks for, hands it what comes back, and
// draws the consequences of each verdict.
#pragma once

#include "host/core/events/event.h"
#include "host/core/events/reporter.h"
#include "host/core/events/verdict.h"
#include "host/core/line/line_tap.h"
#include "host/core/line/line_times.h"
#include "host/core/links/link.h"
#include "host/core/loop/cycle_counter.h"
#include "host/core/loop/driver_link.h"
#include "host/core/loop/link_port.h"
#include "host/core/loop/station_watch.h"
#include "host/core/plan/request_planner.h"
#include "host/core/stations/station_states.h"
#include "host/core/status/link_status.h"
#include "host/core/variables/variable.h"
#include "host/core/writes/write_queue.h"
#include "velko_modbus_rtu.h"

#include <QByteArray>

#include <optional>
#include <string>
#include <vector>

namespace velko
{

/// One thread, the communication thread, opens the port and uses the loop. Other threads may call what
/// stands under "Any thread".
class CommunicationLoop
{
public:
    /// Loads a copy of the driver. `taps` and `sink` are the caller's and outlive the loop. Throws
    /// std::runtime_error.
    CommunicationLoop(const std::string &libraryFile, const Link &link,
                      const std::vector<PlannedRequest> &plan, const std::vector<LineTap *> &taps,
                      EventSink &sink);

    /// Opens the port. Throws PortError.
    void open();
    /// None: the port is open. Otherwise the pause before the next attempt.
    std::optional<milliseconds> reopen();
    bool isOpen() const { return m_port.isOpen(); }
    /// Closes the port. Reports queued writes as failed for this reason.
    void close(const std::string &why);

    /// Replaces the variables, their requests and the link's settings. Queued writes and stored values
    /// stay, unless the port's settings change. Only between two turns.
    void load(const Link &link, const std::vector<PlannedRequest> &plan);

    /// Queues a write of one of the link's variables, or reports why it is refused. Only between two
    /// turns. True if it was queued.
    bool write(const WriteOrder &order);
    bool hasPendingWrites() const { return m_writes.hasPending(); }

    /// Makes at most one exchange. False if this turn had nothing to send; writes may be queued all the
    /// same. If the port fails, closes it and reports all queued writes as failed.
    bool turn();

    // --- Any thread ---

    const LinkStatus &status() const { return m_status; }

    /// What the store holds.
    QByteArray value(const Variable &variable) const { return m_driver.value(variable); }

private:
    void exchange(const Protocol &request);
    void giveUpUnsent(const Protocol &request, const Verdict &verdict);
    void giveUpUnwanted();
    void losePort(const std::string &why);
    void clearWrites(Verdict::Kind kind, const std::string &why);
    Verdict obstacleTo(const Variable &variable) const;
    void noteEnd(const Protocol &request, const Verdict &verdict, bool isSent);
    void settleWrites(const Verdict &verdict, bool mayRepeat);
    void noteWrites(const std::vector<EndedWrite> &ended);

    const LineTaps m_taps;
    const Reporter m_reporter;
    Link m_link;
    DriverLink m_driver;
    StationStates m_stations;
    LinkStatus m_status;
    LinkPort m_port;
    StationWatch m_watch;
    WriteQueue m_writes;
    CycleCounter m_cycle;
    Verdict m_absence;           // of the port: the result of requests meanwhile
    bool m_isInProgress = false; // a request was sent, or its first frame, and has not ended
};

} // namespace velko
