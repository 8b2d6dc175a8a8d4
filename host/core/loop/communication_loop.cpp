#include "host/core/loop/communication_loop.h"

#include "host/core/line/port_error.h"
#include "host/core/text/joined.h"

#include <algorithm>

namespace velko
{

namespace
{

const int CYCLIC_OWNER_TAG = -1;
const int PROBE_OWNER_TAG = -2;
// Each turn of a lost port's clearing gives up a write, or a read between the bursts of writes.
const int MAX_CLEARING_TURNS = 4 * LIMIT_QUEUE_ENTRIES;

std::string secondsText(Clock::duration duration)
{
    const auto tenths = std::chrono::duration_cast<milliseconds>(duration).count() / 100;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
}

RegisterSpan spanOf(const RW_VAR &request)
{
    return {request.varKind, request.addr, request.addr + request.count - 1};
}

} // namespace

CommunicationLoop::CommunicationLoop(const std::string &library, const Link &link,
                                     const std::vector<PlannedRequest> &plan,
                                     const std::vector<LineTap *> &taps, EventSink &sink)
    : m_driver(loadDriverCopy(library)),
      m_taps{link.name, taps},
      m_sink(sink),
      m_desk(*m_driver, sink, link.name)
{
    m_info.commMode = COMM_DEVICE;
    m_info.perVarStation = 1;
    m_driver->SetComInfo(&m_info);
    collectReports(*m_driver);
    load(link, plan);
}

void CommunicationLoop::open()
{
    try {
        m_line = std::make_unique<SerialLine>(m_link.line, m_taps, m_adapter);
    } catch (const PortError &error) {
        if (m_status.portText() != error.what()) // once for each reason
            tell(Event::PORT, joined(m_link.line.devices), PORT_MISSING, error.what());
        m_status.setPort(false, error.what());
        throw;
    }
    m_adapter = identityOf(m_line->device());
    restartProbes();
    m_status.setPort(true, m_line->device());
    tell(Event::PORT, m_line->device(), PORT_OPEN, "");
}

void CommunicationLoop::load(const Link &link, const std::vector<PlannedRequest> &plan)
{
    apply(link);
    giveUpUnwanted();
    restartProbes();
    const QList<VAR_ITEM> none;
    m_driver->ReCreatReadVarList(&none);
    for (const PlannedRequest &request : plan)
        m_driver->AddListReadVar(&request.var);
    m_cycle.load(plan);
    for (const int station : m_watch.notOn()) {
        if (isInLink(station))
            continue;
        m_watch.forget(station);
        m_driver->EnCommStation(station, 1);
        m_status.setOn(station, true);
    }
}

void CommunicationLoop::apply(const Link &link)
{
    const bool isOtherLine = !(link.line == m_link.line);
    m_link = link;
    m_stations = link.stations();
    m_info.maxRegs = link.maxRegs;
    m_info.retryLimit = link.retries;
    m_status.setStaleAfter(milliseconds(link.staleAfter));
    if (isOtherLine)
        m_adapter = AdapterIdentity();
    if (isOtherLine && m_line)
        losePort("it is opened anew with other settings");
}

bool CommunicationLoop::isInLink(int station) const
{
    return std::binary_search(m_stations.begin(), m_stations.end(), station);
}

// A read that is being repeated for a station that is not asked any more.
void CommunicationLoop::giveUpUnwanted()
{
    if (!m_isUnderWay)
        return;
    const Protocol request = *m_driver->ComCommunication();
    const int station = request.var.station;
    const bool isWanted = isInLink(station) && m_watch.state(station) == StationWatch::ON;
    if (!isWanted && request.var.ownerTag < 0)
        giveUpUnsent(request, {Verdict::NOT_SENT, 0, false, "not asked for any more"});
}

void CommunicationLoop::restartProbes()
{
    for (const int station : m_watch.restart())
        m_driver->EnCommStation(station, 0);
}

bool CommunicationLoop::write(const Variable &variable, const std::string &text)
{
    const bool isQueued =
        m_desk.offer(variable, text, m_link.maxRegs, m_link.offerAgain, obstacleTo(variable));
    m_status.setWriting(m_desk.pending());
    return isQueued;
}

// A write that waited for a station, or for the port, would be carried out minutes later, when
// nobody expects it any more. And requests to a disabled station lose their order.
Verdict CommunicationLoop::obstacleTo(const Variable &variable) const
{
    if (!m_line)
        return {Verdict::PORT_GONE, 0, false, "the port is not there"};
    if (m_watch.state(variable.station) != StationWatch::ON)
        return {Verdict::NO_REPLY, 0, false,
                "station " + std::to_string(variable.station) + " is off: it does not answer"};
    return {Verdict::GOOD, 0, false, ""};
}

bool CommunicationLoop::turn()
{
    switchOffCleared();
    if (m_line)
        beginProbe();
    const Protocol *const pending = m_driver->ComCommunication();
    if (!pending)
        return false;
    const Protocol request = *pending; // gone once DataCom is called
    const int station = request.var.station;
    if (!m_line)
        giveUpUnsent(request, m_absence);
    else if (m_watch.state(station) == StationWatch::CLEARING)
        giveUpUnsent(request, {Verdict::NO_REPLY, 0, false, "station off"});
    else
        exchange(request);
    return true;
}

// A probe is the next request to the station that has its turn anyway: to bring it forward would
// change the order of the others.
void CommunicationLoop::beginProbe()
{
    const std::optional<int> station = m_watch.nextProbe();
    if (!station)
        return;
    m_driver->EnCommStation(*station, 1);
    const auto isReadThere = [station](const Variable &variable) {
        return variable.station == *station && variable.isRead();
    };
    if (std::none_of(m_link.variables.begin(), m_link.variables.end(), isReadThere))
        readOnce(*station);
}

void CommunicationLoop::readOnce(int station)
{
    const auto variable =
        std::find_if(m_link.variables.begin(), m_link.variables.end(),
                     [station](const Variable &candidate) { return candidate.station == station; });
    if (variable == m_link.variables.end())
        return;
    RW_VAR request;
    request.ownerTag = PROBE_OWNER_TAG;
    request.areaNo = m_info.localArea;
    request.station = station;
    request.varKind = variable->kind;
    request.addrText = QString::fromStdString(variable->address);
    request.count = 1;
    m_driver->AddListOnceReadVar(&request, QUEUE_CHECKED);
}

void CommunicationLoop::exchange(const Protocol &request)
{
    Exchange exchange;
    m_isUnderWay = true;
    try {
        exchange = m_line->exchange(request.frame, request.replyLen);
    } catch (const PortError &error) {
        losePort(error.what());
        return;
    }
    const int station = request.var.station;
    const bool isProbe = m_watch.state(station) == StationWatch::PROBING;
    const int resultCode = judge(exchange.reply, isProbe);
    const Verdict verdict = verdictOn(request, exchange, resultCode);
    m_taps.judged(verdict.text + (verdict.repeats ? ", will be repeated" : ""));
    m_status.count(station, verdict, exchange);
    m_wasHeard = m_wasHeard || !exchange.isQuiet || verdict.kind != Verdict::NO_REPLY;
    watchStation(station, verdict);
    noteEnd(request, verdict, true);
    const bool mayRepeat = m_watch.state(station) == StationWatch::ON;
    noteWrites(m_desk.settle(takeReports(), verdict, mayRepeat));
}

// The last try is given up at its failure, whatever the limit.
int CommunicationLoop::judge(const QByteArray &reply, bool isLastTry)
{
    if (isLastTry)
        m_info.retryLimit = 0;
    const int resultCode = m_driver->DataCom(&reply, reply.size())->retCode;
    m_info.retryLimit = m_link.retries;
    // The driver adds up the failures of all requests.
    if (m_link.ownFailuresOnly && isGood(resultCode) && m_info.frameDone >= m_info.frameTotal)
        m_info.retryCount = 0;
    return resultCode;
}

void CommunicationLoop::giveUpUnsent(const Protocol &request, const Verdict &verdict)
{
    judge(QByteArray(), true);
    noteEnd(request, verdict, false);
    noteWrites(m_desk.settle(takeReports(), verdict, false));
}

void CommunicationLoop::losePort(const std::string &why)
{
    const std::string device = m_line->device();
    m_line.reset();
    m_status.setPort(false, why);
    tell(Event::PORT, device, PORT_LOST, why);
    clearWrites(Verdict::PORT_GONE, "the port has gone");
}

void CommunicationLoop::close(const std::string &why)
{
    m_line.reset();
    m_status.setPort(false, why);
    clearWrites(Verdict::NOT_SENT, why);
}

// Nothing waits for the port: writes would be carried out when nobody expects them any more. Of what
// was under way nobody can tell whether it was carried out.
void CommunicationLoop::clearWrites(Verdict::Kind kind, const std::string &why)
{
    restartProbes();
    if (m_isUnderWay) {
        const Protocol request = *m_driver->ComCommunication(); // gone once it is given up
        giveUpUnsent(request, {kind, 0, false, why + "; whether it was carried out is not known"});
    }
    m_absence = {kind, 0, false, why + " before it was sent"};
    for (int i = 0; i < MAX_CLEARING_TURNS && queuedWrites() > 0; ++i)
        turn();
    noteWrites(m_desk.endAll(m_absence));
}

int CommunicationLoop::queuedWrites() const
{
    return m_driver->AddListWriteVar(nullptr, QUEUE_CHECKED);
}

void CommunicationLoop::noteEnd(const Protocol &request, const Verdict &verdict, bool isSent)
{
    const bool isOver = !verdict.repeats
                        && (verdict.kind != Verdict::GOOD || m_info.frameDone >= m_info.frameTotal);
    m_isUnderWay = !isOver;
    if (!isOver)
        return;
    m_wasHeard = false;
    if (request.var.ownerTag >= 0)
        m_watch.writeEnded();
    if (request.var.ownerTag != CYCLIC_OWNER_TAG)
        return;
    if (isSent)
        m_status.readEnded(request.var.station, spanOf(request.var), verdict);
    if (m_cycle.ended(request.var, m_watch))
        m_status.cycleEnded();
}

void CommunicationLoop::watchStation(int station, const Verdict &verdict)
{
    const StationWatch::State state = m_watch.state(station);
    if (state == StationWatch::ON) {
        watchSilence(station, verdict);
    } else if (state == StationWatch::PROBING && verdict.kind == Verdict::NO_REPLY) {
        switchOff(station);
    } else if (state == StationWatch::PROBING) {
        const Clock::duration absence = m_watch.on(station);
        m_status.setOn(station, true);
        tell(Event::STATION, std::to_string(station), STATION_CAME_BACK,
             "it answers again after " + secondsText(absence));
    }
}

void CommunicationLoop::watchSilence(int station, const Verdict &verdict)
{
    if (verdict.kind != Verdict::NO_REPLY || verdict.repeats || m_wasHeard || !isInLink(station))
        return;
    m_watch.silent(station, queuedWrites());
    m_status.setOn(station, false);
    tell(Event::STATION, std::to_string(station), STATION_WENT_OFF,
         "it did not answer; the others go on, and it is probed now and then");
}

void CommunicationLoop::switchOffCleared()
{
    for (const int station : m_watch.cleared(queuedWrites() == 0))
        switchOff(station);
}

void CommunicationLoop::switchOff(int station)
{
    m_driver->EnCommStation(station, 0);
    m_watch.off(station);
}

void CommunicationLoop::noteWrites(const std::vector<EndedWrite> &ended)
{
    static const Verdict written{Verdict::GOOD, 0, false, ""};
    static const Verdict notWritten{Verdict::NOT_SENT, 0, false,
                                    "a write failed, and it was not read since"};
    for (const EndedWrite &write : ended) {
        // The store shows what was to be written: of a value that is read, the next read tells.
        if (!write.isDone || !write.variable.isRead())
            m_status.readEnded(write.variable.station, registersOf(write.variable),
                               write.isDone ? written : notWritten);
    }
    if (!ended.empty())
        m_status.setWriting(m_desk.pending());
}

QByteArray CommunicationLoop::value(const Variable &variable) const
{
    QByteArray value;
    m_driver->GetRegisterData(0, variable.kind, QString::fromStdString(variable.address),
                              variable.station, &value, lengthOf(variable));
    return value;
}

void CommunicationLoop::tell(Event::Kind kind, const std::string &name, const char *state,
                             const std::string &detail)
{
    m_sink.tell({kind, m_taps.link, name, state, std::string(), detail, Verdict::GOOD});
}

} // namespace velko
