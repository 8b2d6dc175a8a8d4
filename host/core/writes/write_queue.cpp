#include "host/core/writes/write_queue.h"

#include <stdexcept>

namespace velko
{

namespace
{

const size_t WRITES_IN_A_ROW = 5; // that the driver sends before it reads

Event eventOf(const WriteOrder &order, Event::State state, const std::string &detail,
              Verdict::Kind cause = Verdict::GOOD)
{
    Event event;
    event.state = state;
    event.name = order.variable.name;
    event.value = order.text;
    event.detail = detail;
    event.cause = cause;
    event.write = order.number;
    return event;
}

} // namespace

WriteQueue::WriteQueue(DriverLink &driver, const StationStates &stations, const Reporter &reporter)
    : m_driver(driver),
      m_stations(stations),
      m_reporter(reporter)
{
}

bool WriteQueue::add(const WriteOrder &order, const Verdict &obstacle)
{
    const Variable &variable = order.variable;
    try {
        if (!variable.isWritten())
            throw std::invalid_argument("it is read only");
        const QByteArray value = valueOf(variable, order.text);
        if (obstacle.kind != Verdict::GOOD) {
            refuse(order, obstacle.text, obstacle.kind);
            return false;
        }
        const size_t pieces = targetsOf(variable, order.maxRegs).size();
        const Pending write{order, value, ownerOf(variable), static_cast<int>(pieces)};
        if (!hasRoomFor(write))
            throw std::invalid_argument("the write queue is full; try again later");
        supersede(write);
        m_waitingOf[write.owner] = m_waiting.insert(m_waiting.end(), write);
        m_waitingPieces += write.pieces;
    } catch (const std::invalid_argument &error) {
        refuse(order, error.what(), Verdict::GOOD);
        return false;
    }
    feed();
    return true;
}

// The newer write goes to the end of the order: what was written in between comes before it.
void WriteQueue::supersede(const Pending &newer)
{
    const auto place = m_waitingOf.find(newer.owner);
    if (place == m_waitingOf.end())
        return;
    const Pending older = *place->second;
    removeWaiting(place->second);
    end(older, Event::WRITE_SUPERSEDED, Verdict(Verdict::GOOD, "by " + newer.order.text));
}

// The driver drops each piece that does not fit, without a report.
bool WriteQueue::hasRoomFor(const Pending &write) const
{
    const auto older = m_waitingOf.find(write.owner);
    const int replaced = older == m_waitingOf.end() ? 0 : older->second->pieces;
    return m_driver.queuedWrites() + m_waitingPieces - replaced + write.pieces
           <= LIMIT_QUEUE_ENTRIES;
}

// Passes waiting writes to the driver, up to the first one whose registers are being written.
void WriteQueue::feed()
{
    while (!m_waiting.empty()) {
        const Pending write = m_waiting.front();
        if (mustWait(write))
            return;
        removeWaiting(m_waiting.begin());
        if (!queue(write)) {
            end(write, Event::WRITE_FAILED,
                Verdict(Verdict::NOT_SENT, "the driver does not accept it"));
            continue;
        }
        m_written.add(write.order.variable);
        m_queued.insert({write.owner, write});
    }
}

// A station that is being cleared gives up what is in the driver's queue before what waits, so that
// results come in the order of the writes.
bool WriteQueue::mustWait(const Pending &write) const
{
    const Variable &variable = write.order.variable;
    return m_queued.size() >= WRITES_IN_A_ROW || m_queued.count(write.owner) > 0
           || m_written.touch(variable)
           || m_stations.state(variable.station) == StationStates::CLEARING;
}

void WriteQueue::settle(const std::vector<RequestReport> &reports, const Verdict &verdict,
                        bool mayRepeat)
{
    for (const RequestReport &driverReport : reports) {
        const auto place = m_queued.find(driverReport.ownerTag);
        if (place == m_queued.end())
            continue;
        Pending &write = place->second;
        const bool isDone = driverReport.status == REQUEST_DONE;
        if (!isDone && mayRepeat && write.order.repeats > 0 && queue(write)) {
            --write.order.repeats;
            m_reporter.report(eventOf(write.order, Event::WRITE_QUEUED_AGAIN, verdict.text));
            continue;
        }
        const Pending ended = write;
        m_written.remove(ended.order.variable);
        m_queued.erase(place);
        end(ended, isDone ? Event::WRITE_DONE : Event::WRITE_FAILED, verdict);
    }
    feed();
}

void WriteQueue::failWaiting(int station, const Verdict &verdict)
{
    failWaiting(verdict, [station](const Pending &write) {
        return write.order.variable.station == station;
    });
}

void WriteQueue::failAll(const Verdict &verdict)
{
    for (const auto &entry : m_queued)
        end(entry.second, Event::WRITE_FAILED, verdict);
    m_queued.clear();
    m_written = WrittenRegisters();
    failWaiting(verdict, [](const Pending &) { return true; });
}

void WriteQueue::failWaiting(const Verdict &verdict,
                             const std::function<bool(const Pending &)> &isMeant)
{
    for (auto place = m_waiting.begin(); place != m_waiting.end();) {
        if (!isMeant(*place)) {
            ++place;
            continue;
        }
        const Pending write = *place;
        place = removeWaiting(place);
        end(write, Event::WRITE_FAILED, verdict);
    }
    feed();
}

std::vector<EndedWrite> WriteQueue::takeEnded()
{
    std::vector<EndedWrite> ended;
    ended.swap(m_ended);
    return ended;
}

// All pieces of a write have the variable's ownerTag. The last piece reports the result of all.
bool WriteQueue::queue(const Pending &write)
{
    return m_driver.queuedWrites() + write.pieces <= LIMIT_QUEUE_ENTRIES
           && m_driver.queueWrite(write.order.variable, write.value, write.order.maxRegs,
                                  write.owner);
}

WriteQueue::Waiting::iterator WriteQueue::removeWaiting(Waiting::iterator place)
{
    m_waitingPieces -= place->pieces;
    m_waitingOf.erase(place->owner);
    return m_waiting.erase(place);
}

int WriteQueue::ownerOf(const Variable &variable)
{
    const std::string key = variable.name + " " + std::to_string(variable.station) + " "
                            + placeOf(variable) + " " + std::to_string(lengthOf(variable));
    return m_owners.insert({key, static_cast<int>(m_owners.size()) + 1}).first->second;
}

void WriteQueue::refuse(const WriteOrder &order, const std::string &why, Verdict::Kind cause) const
{
    m_reporter.report(eventOf(order, Event::WRITE_REFUSED, why, cause));
}

void WriteQueue::end(const Pending &write, Event::State state, const Verdict &verdict)
{
    const bool isDone = state == Event::WRITE_DONE;
    const Verdict::Kind cause = state == Event::WRITE_FAILED ? verdict.kind : Verdict::GOOD;
    m_reporter.report(eventOf(write.order, state, isDone ? std::string() : verdict.text, cause));
    m_ended.push_back({write.order.variable, write.value, state});
}

} // namespace velko
