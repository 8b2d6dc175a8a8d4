// The communication loop of one link: sends the driver's requests, passes it the responses, and
// acts on each verdict.
#pragma once

#include "host/core/driver/driver_link.h"
#include "host/core/events/event.h"
#include "host/core/events/reporter.h"
#include "host/core/events/verdict.h"
#include "host/core/line/byte_port.h"
#include "host/core/line/line_tap.h"
#include "host/core/line/line_times.h"
#include "host/core/line/serial_port.h"
#include "host/core/links/link.h"
#include "host/core/loop/cycle_counter.h"
#include "host/core/loop/link_port.h"
#include "host/core/loop/station_talk.h"
#include "host/core/loop/station_watch.h"
#include "host/core/plan/request_planner.h"
#include "host/core/stations/station_states.h"
#include "host/core/status/link_status.h"
#include "host/core/trust/open_requests.h"
#include "host/core/variables/variable.h"
#include "host/core/writes/write_queue.h"
#include "velko_modbus_rtu.h"

#include <QByteArray>

#include <optional>
#include <string>
#include <vector>

namespace velko
{

/// One thread, the communication thread, opens the port and uses the loop. Other threads may call
/// only the functions under "Any thread".
class CommunicationLoop
{
public:
    /// Loads a copy of the driver. `plan`: the requests for the variables of the link. `taps` and
    /// `sink` are the caller's and outlive the loop. Throws std::runtime_error.
    CommunicationLoop(const std::string &libraryFile, const Link &link,
                      const std::vector<PlannedRequest> &plan, const std::vector<LineTap *> &taps,
                      EventSink &sink, const PortOpener &opener = SerialPort::open);

    /// Opens the port. Throws PortError.
    void open();
    /// Tries to open the port. Returns no value if it is open, otherwise the pause before the next
    /// attempt.
    std::optional<milliseconds> reopen();
    bool isOpen() const { return m_port.isOpen(); }
    /// Closes the port at the end. Reports queued writes as failed, with `why` as the reason. The
    /// status remains as it was.
    void close(const std::string &why);

    /// Replaces the variables, their requests and the link's settings. Queued writes and stored
    /// values are kept, unless the settings of the line change. Only between two turns.
    void load(const Link &link, const std::vector<PlannedRequest> &plan);

    /// Queues a write of one of the link's variables and returns true. If the write is refused,
    /// reports the reason and returns false. Only between two turns.
    bool write(const WriteOrder &order);
    /// True while the result of a write is not known.
    bool hasPendingWrites() const { return m_writes.hasPending(); }

    /// Makes at most one exchange. Returns false if there was no request in this turn; writes may
    /// be queued even then. If the port fails, closes it and reports all queued writes as failed.
    bool turn();
    /// How long to wait after a turn without a request, unless there is an order.
    milliseconds idleTime() const;

    /// True between the frames of one request. Only between two turns.
    bool isInProgress() const { return m_isInProgress; }

    // --- Any thread ---

    /// Ends the wait for responses when the program ends.
    ReadCut &readCut() { return m_readCut; }

    const LinkStatus &status() const { return m_status; }

    /// Returns the value in the driver's store, in the bytes of GetRegisterData.
    QByteArray value(const Variable &variable) const { return m_driver.value(variable); }

private:
    void exchange(const Protocol &request);
    void probe(const Probe &probe);
    bool isCut(const StationTalk::Result &result) const;
    void judge(const Protocol &request, const StationTalk::Result &result);
    void noteRead(const StationTalk::Result &result, const char *purpose);
    void giveUpUnsent(const Protocol &request, const Verdict &verdict);
    void giveUpDroppedRead();
    void losePort(const std::string &why);
    void clearWrites(Verdict::Kind kind, const std::string &why);
    Verdict obstacleTo(const Variable &variable) const;
    void noteEnd(const Protocol &request, const Verdict &verdict, bool isSent);
    void settleWrites(const Verdict &verdict, bool mayRepeat);
    void noteWrites();

    const LineTaps m_taps;
    const Reporter m_reporter;
    Link m_link;
    DriverLink m_driver;
    StationStates m_stations;
    LinkStatus m_status;
    OpenRequests m_open;
    ReadCut m_readCut;
    LinkPort m_port;
    StationTalk m_talk;
    StationWatch m_watch;
    WriteQueue m_writes;
    CycleCounter m_cycle;
    Verdict m_absence;           // result of requests while the port is closed
    bool m_isInProgress = false; // the driver awaits the result of a request
    bool m_isSent = false;       // the frame that carries it out was sent
};

} // namespace velko
