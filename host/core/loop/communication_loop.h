// The communication loop of one link: what the driver asks for goes out, what comes back is handed to
// it, and what follows from the verdicts is done: stations switched off and probed, writes told
// about, values marked.
#pragma once

#include "host/core/events/event.h"
#include "host/core/loading/driver_copy.h"
#include "host/core/loop/cycle_counter.h"
#include "host/core/status/link_status.h"
#include "host/core/writes/write_queue.h"

namespace velko
{

/// One thread opens the port and uses the loop; what others may call says so.
class CommunicationLoop
{
public:
    /// Loads a copy of the driver. `taps` and `sink` are the caller's and outlive the loop. Throws
    /// std::runtime_error.
    CommunicationLoop(const std::string &library, const Link &link,
                      const std::vector<PlannedRequest> &plan, const std::vector<LineTap *> &taps,
                      EventSink &sink);

    /// Opens the port. Throws PortError.
    void open();
    bool isOpen() const { return m_line != nullptr; }
    /// Writes under way are told to have failed for this reason.
    void close(const std::string &why);

    /// Another list of variables, made of them the requests, and other settings. Queued writes and
    /// stored values stay. Between two turns only.
    void load(const Link &link, const std::vector<PlannedRequest> &plan);

    /// Queues a write of one of the link's variables, or tells why not. Between two turns only. True
    /// when it was queued.
    bool write(const Variable &variable, const std::string &text);
    bool hasPendingWrites() const { return m_desk.hasPending(); }

    /// At most one exchange; false when this turn had nothing to send. That is no sign of having
    /// finished: writes may still be queued. A port that fails is closed, and all writes under way
    /// are told to have failed.
    bool turn();

    // --- Any thread ---

    const LinkStatus &status() const { return m_status; }

    /// What the store holds.
    QByteArray value(const Variable &variable) const;

private:
    void apply(const Link &link);
    Verdict obstacleTo(const Variable &variable) const;
    void beginProbe();
    void readOnce(int station);
    void exchange(const Protocol &request);
    int judge(const QByteArray &reply, bool isLastTry);
    void giveUpUnsent(const Protocol &request, const Verdict &verdict);
    void giveUpUnwanted();
    void restartProbes();
    void clearWrites(Verdict::Kind kind, const std::string &why);
    void losePort(const std::string &why);
    int queuedWrites() const;
    bool isInLink(int station) const;
    void noteEnd(const Protocol &request, const Verdict &verdict, bool isSent);
    void watchStation(int station, const Verdict &verdict);
    void watchSilence(int station, const Verdict &verdict);
    void switchOff(int station);
    void switchOffCleared();
    void noteWrites(const std::vector<EndedWrite> &ended);
    void tell(Event::Kind kind, const std::string &name, const char *state,
              const std::string &detail);

    Link m_link;
    const std::unique_ptr<DriverLibrary> m_driver;
    LineTaps m_taps;
    EventSink &m_sink;
    ComInfo m_info;
    std::unique_ptr<SerialLine> m_line; // null while the port is not there
    Verdict m_absence;                  // of the port: what becomes of requests meanwhile
    std::vector<int> m_stations;        // of the link, ascending
    AdapterIdentity m_adapter;
    StationWatch m_watch;
    CycleCounter m_cycle;
    WriteDesk m_desk;
    LinkStatus m_status;
    bool m_isUnderWay = false; // a request was sent, or half of it, and has not ended
    bool m_wasHeard = false;   // bytes came in one of its tries
};

} // namespace velko
