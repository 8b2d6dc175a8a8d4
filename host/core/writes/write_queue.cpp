#include "host/core/writes/write_queue.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace velko
{

WriteQueue::WriteQueue(const DriverLibrary &driver, const Reporter &reporter)
    : m_driver(driver),
      m_reporter(reporter)
{
}

bool WriteQueue::add(const WriteOrder &order, int maxRegs, int repeats, const Verdict &obstacle)
{
    Pending write{order, QByteArray(), targetsOf(order.variable, maxRegs), repeats};
    const int owner = ownerOf(order.variable);
    try {
        if (!order.variable.isWritten())
            throw std::invalid_argument("it is read only");
        write.value = valueOf(order.variable, order.text);
        if (obstacle.kind != Verdict::GOOD) {
            report(order, Event::WRITE_REFUSED, obstacle.text, obstacle.kind);
            return false;
        }
        if (!queue(owner, write))
            throw std::invalid_argument("the write queue is full; try again later");
    } catch (const std::invalid_argument &error) {
        report(order, Event::WRITE_REFUSED, error.what());
        return false;
    }
    supersede(owner, write);
    m_pending[owner] = write;
    return true;
}

// In the driver's queue a newer record replaces an older one of the same target, also that of
// another owner. Two variables have a common target only if a reload has renamed a variable.
void WriteQueue::supersede(int owner, const Pending &newer)
{
    const auto isReplaced = [&newer](const Pending &older) {
        std::vector<WriteTarget> common;
        std::set_intersection(older.targets.begin(), older.targets.end(), newer.targets.begin(),
                              newer.targets.end(), std::back_inserter(common));
        return !common.empty() && older.order.variable.kind == newer.order.variable.kind;
    };
    for (auto place = m_pending.begin(); place != m_pending.end();) {
        if (place->first != owner && !isReplaced(place->second)) {
            ++place;
            continue;
        }
        report(place->second.order, Event::WRITE_SUPERSEDED, "by " + newer.order.text);
        place = m_pending.erase(place);
    }
}

// The driver drops each piece that does not fit, without a report.
bool WriteQueue::hasRoom(size_t pieces) const
{
    const int queued = m_driver.AddListWriteVar(nullptr, QUEUE_CHECKED);
    return queued + static_cast<int>(pieces) <= LIMIT_QUEUE_ENTRIES;
}

std::vector<EndedWrite> WriteQueue::settle(const std::vector<RequestReport> &reports,
                                           const Verdict &verdict, bool mayRepeat)
{
    std::vector<EndedWrite> ended;
    for (const RequestReport &driverReport : reports) {
        const auto place = m_pending.find(driverReport.ownerTag);
        if (place == m_pending.end())
            continue; // a probe
        Pending &write = place->second;
        const bool isDone = driverReport.status == REQUEST_DONE;
        if (!isDone && mayRepeat && write.repeatsLeft > 0 && queue(driverReport.ownerTag, write)) {
            --write.repeatsLeft;
            report(write.order, Event::WRITE_QUEUED_AGAIN, verdict.text);
            continue;
        }
        if (isDone)
            report(write.order, Event::WRITE_DONE, std::string());
        else
            report(write.order, Event::WRITE_FAILED, verdict.text, verdict.kind);
        ended.push_back({write.order.variable, isDone});
        m_pending.erase(place);
    }
    return ended;
}

std::vector<Variable> WriteQueue::pending() const
{
    std::vector<Variable> variables;
    for (const auto &entry : m_pending)
        variables.push_back(entry.second.order.variable);
    return variables;
}

std::vector<EndedWrite> WriteQueue::failAll(const Verdict &verdict)
{
    std::vector<EndedWrite> ended;
    for (const auto &entry : m_pending) {
        report(entry.second.order, Event::WRITE_FAILED, verdict.text, verdict.kind);
        ended.push_back({entry.second.order.variable, false});
    }
    m_pending.clear();
    return ended;
}

// All pieces of a write have the variable's ownerTag. The last piece reports the result of all.
bool WriteQueue::queue(int owner, const Pending &write)
{
    const Variable &variable = write.order.variable;
    return hasRoom(write.targets.size())
           && m_driver.SetRegisterData(QString::fromStdString(variable.name), variable.kind,
                                       QString::fromStdString(variable.address), variable.station,
                                       &write.value, lengthOf(variable), 0, owner)
                  > 0;
}

int WriteQueue::ownerOf(const Variable &variable)
{
    const std::string key = variable.name + " " + std::to_string(variable.station) + " "
                            + placeOf(variable) + " " + std::to_string(lengthOf(variable));
    return m_owners.insert({key, static_cast<int>(m_owners.size()) + 1}).first->second;
}

void WriteQueue::report(const WriteOrder &order, Event::State state, const std::string &detail,
                        Verdict::Kind cause) const
{
    Event event;
    event.state = state;
    event.name = order.variable.name;
    event.value = order.text;
    event.detail = detail;
    event.cause = cause;
    event.write = order.number;
    m_reporter.report(event);
}

} // namespace velko
