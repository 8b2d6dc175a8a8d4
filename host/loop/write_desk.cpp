#include "host/loop/write_desk.h"

#include <algorithm>
#include <stdexcept>

WriteDesk::WriteDesk(const DriverLibrary &driver, EventSink &sink, const std::string &link)
    : m_driver(driver),
      m_sink(sink),
      m_link(link)
{
}

bool WriteDesk::offer(const Variable &variable, const std::string &text, int maxRegs, int offers,
                      const std::string &obstacle)
{
    Pending write{variable, text, QByteArray(), 0, offers};
    try {
        if (!variable.isWritten())
            throw std::invalid_argument("it is read only");
        write.value = valueOf(variable, text);
        write.pieces = static_cast<int>(targetsOf(variable, maxRegs).size());
        if (!obstacle.empty())
            throw std::invalid_argument(obstacle);
        if (!queue(numberOf(variable.name), write))
            throw std::invalid_argument("the write queue is full; try again later");
    } catch (const std::invalid_argument &error) {
        tell(write, WRITE_REFUSED, error.what());
        return false;
    }
    const int number = numberOf(variable.name);
    const auto older = m_pending.find(number);
    if (older != m_pending.end())
        tell(older->second, WRITE_SUPERSEDED, "by " + text);
    m_pending[number] = write;
    return true;
}

// The driver drops what does not fit without a word, piece by piece.
bool WriteDesk::hasRoom(int pieces) const
{
    return m_driver.AddListWriteVar(nullptr, QUEUE_CHECKED) + pieces <= LIMIT_QUEUE_ENTRIES;
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

bool WriteDesk::hasPending(int station) const
{
    return std::any_of(m_pending.begin(), m_pending.end(), [station](const auto &entry) {
        return entry.second.variable.station == station;
    });
}

// The identity is the variable: all pieces of a write carry it, and the last one reports for all.
bool WriteDesk::queue(int number, const Pending &write)
{
    const Variable &variable = write.variable;
    return hasRoom(write.pieces)
           && m_driver.SetRegisterData(QString::fromStdString(variable.name), variable.kind,
                                       QString::fromStdString(variable.address), variable.station,
                                       &write.value, lengthOf(variable), 0, number)
                  > 0;
}

int WriteDesk::numberOf(const std::string &name)
{
    return m_numbers.insert({name, static_cast<int>(m_numbers.size()) + 1}).first->second;
}

void WriteDesk::tell(const Pending &write, const char *state, const std::string &detail,
                     Verdict::Kind cause)
{
    m_sink.tell({Event::WRITE, m_link, write.variable.name, state, write.text, detail, cause});
}
