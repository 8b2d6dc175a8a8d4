#include "host/core/writes/write_queue.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace velko
{

WriteDesk::WriteDesk(const DriverLibrary &driver, EventSink &sink, const std::string &link)
    : m_driver(driver),
      m_sink(sink),
      m_link(link)
{
}

bool WriteDesk::offer(const Variable &variable, const std::string &text, int maxRegs, int offers,
                      const Verdict &obstacle)
{
    Pending write{variable, text, QByteArray(), targetsOf(variable, maxRegs), offers};
    const int number = numberOf(variable);
    try {
        if (!variable.isWritten())
            throw std::invalid_argument("it is read only");
        write.value = valueOf(variable, text);
        if (obstacle.kind != Verdict::GOOD) {
            tell(write, WRITE_REFUSED, obstacle.text, obstacle.kind);
            return false;
        }
        if (!queue(number, write))
            throw std::invalid_argument("the write queue is full; try again later");
    } catch (const std::invalid_argument &error) {
        tell(write, WRITE_REFUSED, error.what());
        return false;
    }
    supersede(number, write);
    m_pending[number] = write;
    return true;
}

// The driver lets a newer record to the same target take an older one's place, whoever queued it. Two
// variables have a target in common only where a reload has given one place another name.
void WriteDesk::supersede(int number, const Pending &newer)
{
    const auto isReplaced = [&newer](const Pending &older) {
        std::vector<WriteTarget> common;
        std::set_intersection(older.targets.begin(), older.targets.end(), newer.targets.begin(),
                              newer.targets.end(), std::back_inserter(common));
        return !common.empty() && older.variable.kind == newer.variable.kind;
    };
    for (auto place = m_pending.begin(); place != m_pending.end();) {
        if (place->first != number && !isReplaced(place->second)) {
            ++place;
            continue;
        }
        tell(place->second, WRITE_SUPERSEDED, "by " + newer.text);
        place = m_pending.erase(place);
    }
}

// The driver drops what does not fit without a word, piece by piece.
bool WriteDesk::hasRoom(size_t pieces) const
{
    const int queued = m_driver.AddListWriteVar(nullptr, QUEUE_CHECKED);
    return queued + static_cast<int>(pieces) <= LIMIT_QUEUE_ENTRIES;
}

std::vector<EndedWrite> WriteDesk::settle(const std::vector<RequestReport> &reports,
                                          const Verdict &verdict, bool mayRepeat)
{
    std::vector<EndedWrite> ended;
    for (const RequestReport &report : reports) {
        const auto place = m_pending.find(report.ownerTag);
        if (place == m_pending.end())
            continue; // a probe
        Pending &write = place->second;
        const bool isOffered = report.status == REQUEST_GIVEN_UP && mayRepeat
                               && write.offersLeft > 0 && queue(report.ownerTag, write);
        if (isOffered) {
            --write.offersLeft;
            tell(write, WRITE_OFFERED_AGAIN, verdict.text);
            continue;
        }
        const bool isDone = report.status == REQUEST_DONE;
        if (isDone)
            tell(write, WRITE_DONE, std::string());
        else
            tell(write, WRITE_FAILED, verdict.text, verdict.kind);
        ended.push_back({write.variable, isDone});
        m_pending.erase(place);
    }
    return ended;
}

std::vector<Variable> WriteDesk::pending() const
{
    std::vector<Variable> variables;
    for (const auto &entry : m_pending)
        variables.push_back(entry.second.variable);
    return variables;
}

std::vector<EndedWrite> WriteDesk::endAll(const Verdict &verdict)
{
    std::vector<EndedWrite> ended;
    for (const auto &entry : m_pending) {
        tell(entry.second, WRITE_FAILED, verdict.text, verdict.kind);
        ended.push_back({entry.second.variable, false});
    }
    m_pending.clear();
    return ended;
}

// The identity is the variable: all pieces of a write carry it, and the last one reports for all.
bool WriteDesk::queue(int number, const Pending &write)
{
    const Variable &variable = write.variable;
    return hasRoom(write.targets.size())
           && m_driver.SetRegisterData(QString::fromStdString(variable.name), variable.kind,
                                       QString::fromStdString(variable.address), variable.station,
                                       &write.value, lengthOf(variable), 0, number)
                  > 0;
}

int WriteDesk::numberOf(const Variable &variable)
{
    const std::string key = variable.name + " " + std::to_string(variable.station) + " "
                            + placeOf(variable) + " " + std::to_string(lengthOf(variable));
    return m_numbers.insert({key, static_cast<int>(m_numbers.size()) + 1}).first->second;
}

void WriteDesk::tell(const Pending &write, const char *state, const std::string &detail,
                     Verdict::Kind cause)
{
    m_sink.tell({Event::WRITE, m_link, write.variable.name, state, write.text, detail, cause});
}

} // namespace velko
