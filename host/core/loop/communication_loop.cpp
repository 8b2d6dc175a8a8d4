#include "host/core/loop/communication_loop.h"

#include "host/core/line/port_error.h"
#include "host/core/writes/request_reports.h"

namespace velko
{

namespace
{

// Without a port, each turn gives up a write, or a read between two bursts of writes.
const int MAX_CLEARING_TURNS = 4 * LIMIT_QUEUE_ENTRIES;

RegisterSpan spanOf(const RW_VAR &request)
{
    return {request.varKind, request.addr, request.addr + request.count - 1};
}

} // namespace

CommunicationLoop::CommunicationLoop(const std::string &libraryFile, const Link &link,
                                     const std::vector<PlannedRequest> &plan,
                                     const std::vector<LineTap *> &taps, EventSink &sink)
    : m_taps{link.name, taps},
      m_reporter(link.name, sink),
      m_driver(libraryFile),
      m_stations(m_driver.driver()),
      m_status(m_stations),
      m_port(m_taps, m_reporter, m_status),
      m_watch(m_driver, m_stations, m_reporter),
      m_writes(m_driver.driver(), m_reporter)
{
    collectReports(m_driver.driver());
    load(link, plan);
}

void CommunicationLoop::open()
{
    m_port.open();
    m_stations.restartProbes();
}

std::optional<milliseconds> CommunicationLoop::reopen()
{
    const std::optional<milliseconds> pause = m_port.reopen();
    if (!pause)
        m_stations.restartProbes();
    return pause;
}

void CommunicationLoop::load(const Link &link, const std::vector<PlannedRequest> &plan)
{
    m_link = link;
    m_status.setStaleAfter(milliseconds(link.staleAfter));
    m_watch.load(link);
    if (m_port.setSettings(link.line))
        losePort("it is opened again with other settings");
    giveUpDroppedRead();
    m_driver.load(link, plan);
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
    const bool isQueued =
        m_writes.add(order, m_link.maxRegs, m_link.queueAgain, obstacleTo(order.variable));
    m_status.setWriting(m_writes.pending());
    return isQueued;
}

// A write that waits for a station or for the port would be executed minutes later, unexpectedly.
// And the driver does not keep the order of requests to a disabled station.
Verdict CommunicationLoop::obstacleTo(const Variable &variable) const
{
    if (!isOpen())
        return Verdict(Verdict::PORT_GONE, "the port is disconnected");
    if (!m_stations.isOnline(variable.station))
        return Verdict(Verdict::NO_REPLY,
                       "station " + std::to_string(variable.station) + " is offline");
    return Verdict(Verdict::GOOD);
}

bool CommunicationLoop::turn()
{
    m_watch.beginTurn(isOpen());
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

void CommunicationLoop::exchange(const Protocol &request)
{
    Exchange exchange;
    m_isInProgress = true;
    try {
        exchange = m_port.exchange(request);
    } catch (const PortError &error) {
        losePort(error.what());
        return;
    }
    const int station = request.var.station;
    const bool isProbe = m_stations.state(station) == StationStates::PROBING;
    const Verdict verdict = verdictOn(request, exchange, m_driver.judge(exchange.reply, isProbe));
    m_taps.judged(verdict.text + (verdict.repeats ? ", will be repeated" : ""));
    m_status.count(station, verdict, exchange);
    m_watch.exchangeEnded(station, verdict, exchange.isQuiet);
    noteEnd(request, verdict, true);
    settleWrites(verdict, m_stations.isOnline(station));
}

void CommunicationLoop::giveUpUnsent(const Protocol &request, const Verdict &verdict)
{
    m_driver.judge(QByteArray(), true);
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
    m_port.close(why);
    clearWrites(Verdict::NOT_SENT, why);
}

// The request in progress may have been executed. The other ones are never sent.
void CommunicationLoop::clearWrites(Verdict::Kind kind, const std::string &why)
{
    m_stations.restartProbes();
    if (m_isInProgress)
        giveUpUnsent(*m_driver.next(),
                     Verdict(kind, why + "; whether it was carried out is not known"));
    m_absence = Verdict(kind, why + " before it was sent");
    for (int i = 0; i < MAX_CLEARING_TURNS && m_driver.queuedWrites() > 0; ++i)
        turn();
    noteWrites(m_writes.failAll(m_absence));
}

void CommunicationLoop::noteEnd(const Protocol &request, const Verdict &verdict, bool isSent)
{
    m_isInProgress =
        verdict.repeats || (verdict.kind == Verdict::GOOD && !m_driver.isRequestComplete());
    if (m_isInProgress)
        return;
    m_watch.requestEnded(request.var);
    if (request.var.ownerTag != DriverLink::CYCLIC_OWNER_TAG)
        return;
    if (isSent)
        m_status.readEnded(request.var.station, spanOf(request.var), verdict);
    if (m_cycle.ended(request.var, m_stations))
        m_status.cycleEnded();
}

void CommunicationLoop::settleWrites(const Verdict &verdict, bool mayRepeat)
{
    noteWrites(m_writes.settle(takeReports(), verdict, mayRepeat));
}

void CommunicationLoop::noteWrites(const std::vector<EndedWrite> &ended)
{
    const Verdict written(Verdict::GOOD);
    const Verdict notWritten(Verdict::NOT_SENT, "a write failed, and it was not read since");
    for (const EndedWrite &write : ended) {
        // The store shows the value of the write, even if it failed. For a variable that is read,
        // the next read decides.
        if (!write.isDone || !write.variable.isRead())
            m_status.readEnded(write.variable.station, registersOf(write.variable),
                               write.isDone ? written : notWritten);
    }
    if (!ended.empty())
        m_status.setWriting(m_writes.pending());
}

} // namespace velko
