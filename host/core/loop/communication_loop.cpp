#include "host/core/loop/communication_loop.h"

#include "host/core/line/port_error.h"
#include "host/core/line/replies.h"
#include "host/core/sizes/frames.h"
#include "host/core/writes/request_reports.h"

#include <algorithm>
#include <set>

namespace velko
{

namespace
{

// Without a port, each turn gives up a write, or a read between two bursts of writes.
const int MAX_CLEARING_TURNS = 4 * LIMIT_QUEUE_ENTRIES;

// After a turn without a request. The pauses limit the load of the processor.
const milliseconds SHORTEST_PAUSE(1);
const milliseconds LONGEST_PAUSE(500);

bool isRead(const Protocol &request)
{
    return byteAt(request.frame, 1) <= READ_INPUT_REGISTERS;
}

// False for the read with which a bit or byte write begins.
bool carriesOut(const Protocol &request)
{
    return request.var.ownerTag < 0 || !isRead(request);
}

RegisterSpan spanOf(const RW_VAR &request)
{
    return {request.varKind, request.addr, request.addr + request.count - 1};
}

} // namespace

CommunicationLoop::CommunicationLoop(const std::string &libraryFile, const Link &link,
                                     const std::vector<PlannedRequest> &plan,
                                     const std::vector<LineTap *> &taps, EventSink &sink,
                                     const PortOpener &opener)
    : m_taps{link.name, taps},
      m_reporter(link.name, sink),
      m_driver(libraryFile),
      m_stations(m_driver.driver()),
      m_status(m_stations),
      m_port(opener, m_taps, m_open, m_readCut, m_reporter, m_status),
      m_talk(m_port, m_open),
      m_watch(m_driver, m_stations, m_open, m_reporter),
      m_writes(m_driver, m_stations, m_reporter)
{
    collectReports(m_driver.driver());
    load(link, plan);
}

void CommunicationLoop::open()
{
    m_port.open();
    m_watch.restartProbes();
}

std::optional<milliseconds> CommunicationLoop::reopen()
{
    const std::optional<milliseconds> pause = m_port.reopen();
    if (!pause)
        m_watch.restartProbes();
    return pause;
}

void CommunicationLoop::load(const Link &link, const std::vector<PlannedRequest> &plan)
{
    m_link = link;
    m_status.setStaleAfter(milliseconds(link.staleAfter));
    m_watch.load(m_link, plan);
    m_talk.load(m_link, plan);
    if (m_port.setSettings(link.line))
        losePort("it is opened again with other settings");
    giveUpDroppedRead();
    m_driver.load(m_link, plan);
    m_cycle.load(plan);
}

// Gives up a read in progress if its station is offline or has no variables any more.
void CommunicationLoop::giveUpDroppedRead()
{
    if (!m_isInProgress)
        return;
    const std::optional<Protocol> request = m_driver.next();
    const int station = request->var.station;
    const bool isPolled = m_watch.isInLink(station) && m_stations.isOnline(station);
    if (!isPolled && request->var.ownerTag < 0)
        giveUpUnsent(*request, Verdict(Verdict::NOT_SENT, "it is no longer polled"));
}

bool CommunicationLoop::write(const WriteOrder &order)
{
    WriteOrder whole = order;
    whole.maxRegs = m_link.maxRegsOf(order.variable.station);
    whole.repeats = m_link.queueAgain;
    m_status.writeBegins(order.variable); // before the store shows the value
    const bool isAdded = m_writes.add(whole, obstacleTo(order.variable));
    if (!isAdded)
        m_status.writeEnds(order.variable);
    noteWrites();
    return isAdded;
}

// A write that waits for a station or for the port would be executed minutes later, unexpectedly.
// And the driver does not keep the order of requests to a disabled station.
Verdict CommunicationLoop::obstacleTo(const Variable &variable) const
{
    if (!isOpen())
        return Verdict(Verdict::PORT_GONE, "the port is not open");
    if (!m_stations.isOnline(variable.station))
        return Verdict(Verdict::NO_REPLY,
                       "station " + std::to_string(variable.station) + " is offline");
    return Verdict(Verdict::GOOD);
}

bool CommunicationLoop::turn()
{
    for (const int station : m_watch.endClearing()) {
        m_writes.failWaiting(station, Verdict(Verdict::NO_REPLY, "the station is offline"));
        noteWrites();
    }
    if (isOpen() && !m_isInProgress) {
        if (const std::optional<Probe> due = m_watch.dueProbe()) {
            probe(*due);
            return true;
        }
    }
    const std::optional<Protocol> request = m_driver.next();
    if (!request)
        return false;
    if (!isOpen())
        giveUpUnsent(*request, m_absence);
    else if (m_stations.state(request->var.station) == StationStates::CLEARING)
        giveUpUnsent(*request, Verdict(Verdict::NO_REPLY, "the station is offline"));
    else
        exchange(*request);
    return true;
}

milliseconds CommunicationLoop::idleTime() const
{
    const bool hasRequests = m_driver.queuedWrites() > 0 || m_watch.isAnyPolled();
    return hasRequests ? SHORTEST_PAUSE
                       : std::clamp(m_watch.untilNextProbe(), SHORTEST_PAUSE, LONGEST_PAUSE);
}

void CommunicationLoop::exchange(const Protocol &request)
{
    m_isInProgress = true;
    try {
        m_status.setAwaited(request.var.station, request.var.ownerTag > 0);
        StationTalk::Result result = m_talk.ask(request);
        const std::set<int> heard = m_open.takeHeard();
        // A late response to an earlier try shows that the station is there.
        result.exchange.isQuiet = result.exchange.isQuiet && heard.count(request.var.station) == 0;
        if (result.kind == StationTalk::CHECK_READ && result.isAnswered)
            noteRead(result, "check read");
        else
            judge(request, result);
        m_watch.heard(heard);
    } catch (const PortError &error) {
        m_isSent = m_isSent || (m_talk.latestKind() == StationTalk::REQUEST && carriesOut(request));
        losePort(error.what());
    }
}

// A check read without answer is a failed try of the request that waits for it.
void CommunicationLoop::judge(const Protocol &request, const StationTalk::Result &result)
{
    const bool isRequest = result.kind == StationTalk::REQUEST;
    const int station = request.var.station;
    m_isSent = m_isSent || (isRequest && carriesOut(request));
    if (isCut(result)) {
        m_status.count(station, Verdict(Verdict::NOT_SENT), result.exchange);
        return; // the request ends with the loop
    }
    const QByteArray reply = isRequest ? result.exchange.reply : QByteArray();
    Verdict verdict =
        verdictOn(result.request, result.exchange, m_driver.judge(request, reply, false));
    if (!isRequest && result.isGood) {
        verdict.kind = Verdict::NO_REPLY;
        verdict.text = "no response that can be trusted yet";
    }
    m_taps.judged(verdict.text + (isRequest ? "" : " (check read)")
                  + (verdict.repeats ? ", will be repeated" : ""));
    m_status.count(station, verdict, result.exchange);
    m_watch.exchangeEnded(request.var, verdict, result.exchange.isQuiet);
    noteEnd(request, verdict, true);
    settleWrites(verdict, m_stations.isOnline(station));
}

bool CommunicationLoop::isCut(const StationTalk::Result &result) const
{
    return m_readCut.isDue() && result.exchange.outcome == Exchange::NO_RESPONSE
           && isRead(result.request);
}

void CommunicationLoop::probe(const Probe &probe)
{
    const Clock::time_point begin = Clock::now();
    try {
        m_status.setAwaited(probe.station, false);
        const StationTalk::Result result = m_talk.probe(probe);
        const std::set<int> heard = m_open.takeHeard();
        noteRead(result, "probe");
        m_watch.probeEnded(probe, begin, heard.count(probe.station) > 0);
        m_watch.heard(heard);
    } catch (const PortError &error) {
        losePort(error.what());
    }
}

// Counts a read that the driver does not know.
void CommunicationLoop::noteRead(const StationTalk::Result &result, const char *purpose)
{
    const Verdict verdict = verdictOn(result.request, result.exchange,
                                      result.isGood ? RESULT_GOOD : RESULT_LOCAL_NO_REPLY);
    m_taps.judged(verdict.text + " (" + purpose + ")");
    m_status.count(result.request.var.station, verdict, result.exchange);
}

void CommunicationLoop::giveUpUnsent(const Protocol &request, const Verdict &verdict)
{
    m_driver.judge(request, QByteArray(), true);
    noteEnd(request, verdict, false);
    settleWrites(verdict, false);
}

void CommunicationLoop::losePort(const std::string &why)
{
    m_port.lose(why);
    clearWrites(Verdict::PORT_GONE, "the port was disconnected");
}

void CommunicationLoop::close(const std::string &why)
{
    m_port.close();
    clearWrites(Verdict::NOT_SENT, why);
}

// The request in progress may have been executed. The other ones are never sent.
void CommunicationLoop::clearWrites(Verdict::Kind kind, const std::string &why)
{
    m_watch.restartProbes();
    m_absence = Verdict(kind, why + " before it was sent");
    if (m_isInProgress)
        giveUpUnsent(*m_driver.next(),
                     m_isSent ? Verdict(kind, why + "; whether it was carried out is not known")
                              : m_absence);
    for (int i = 0; i < MAX_CLEARING_TURNS && m_driver.queuedWrites() > 0; ++i)
        turn();
    m_writes.failAll(m_absence);
    noteWrites();
}

void CommunicationLoop::noteEnd(const Protocol &request, const Verdict &verdict, bool isSent)
{
    m_isInProgress =
        verdict.repeats || (verdict.kind == Verdict::GOOD && !m_driver.isRequestComplete());
    if (m_isInProgress)
        return;
    m_isSent = false;
    m_watch.requestEnded(request.var);
    if (request.var.ownerTag != DriverLink::CYCLIC_OWNER_TAG)
        return;
    if (!isSent)
        return;
    m_status.readEnded(request.var.station, spanOf(request.var), verdict);
    m_cycle.ended(request.var);
    if (!m_cycle.isComplete(m_stations))
        return;
    m_cycle.restart();
    m_status.cycleEnded();
}

void CommunicationLoop::settleWrites(const Verdict &verdict, bool mayRepeat)
{
    m_writes.settle(takeReports(), verdict, mayRepeat);
    noteWrites();
}

void CommunicationLoop::noteWrites()
{
    const Verdict written(Verdict::GOOD);
    const Verdict notWritten(Verdict::NOT_SENT, "a write failed, and it was not read since");
    for (const EndedWrite &write : m_writes.takeEnded()) {
        const Variable &variable = write.variable;
        // The store may show the value of the write even if it failed. For a variable that is read,
        // the next read decides.
        const bool isDone = write.result == Event::WRITE_DONE;
        if (isDone)
            m_driver.show(variable, write.value);
        if (write.result == Event::WRITE_FAILED || (isDone && !variable.isRead()))
            m_status.readEnded(variable.station, registersOf(variable),
                               isDone ? written : notWritten);
        m_status.writeEnds(variable);
    }
}

} // namespace velko
