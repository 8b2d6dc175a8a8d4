#include "host/communication_loop.h"

#include "host/replies.h"

#include <QElapsedTimer>
#include <QThread>

#include <algorithm>

namespace
{

// A turn without a request costs nothing on the line; without a pause it would cost the processor.
const int IDLE_PAUSE = 1; // milliseconds

const int CYCLIC_OWNER_TAG = -1;

bool isGood(int resultCode)
{
    return resultCode == RESULT_GOOD || resultCode == RESULT_REMOTE_NOT_STORED;
}

} // namespace

std::string textOf(const LineCounters &counters)
{
    return "Frames: " + std::to_string(counters.sent) + " sent, " + std::to_string(counters.good)
           + " good, " + std::to_string(counters.repeated) + " repeated, "
           + std::to_string(counters.givenUp) + " given up";
}

CommunicationLoop::CommunicationLoop(const DriverLibrary &driver, ComInfo &link, SerialLine &line)
    : m_driver(driver),
      m_link(link),
      m_line(line)
{
}

void CommunicationLoop::turn()
{
    const Protocol *const pending = m_driver.ComCommunication();
    if (!pending) {
        QThread::msleep(IDLE_PAUSE);
        return;
    }
    const Protocol request = *pending; // gone once DataCom is called
    const QByteArray reply = m_line.exchange(request.frame, request.replyLen);
    const int resultCode = m_driver.DataCom(&reply, reply.size())->retCode;
    count(resultCode);
    // The driver adds up the failures of all requests; each is to be given up for its own alone.
    if (isGood(resultCode) && m_link.frameDone >= m_link.frameTotal)
        m_link.retryCount = 0;
    if (request.var.ownerTag == CYCLIC_OWNER_TAG)
        m_reads.note(request.var, isGood(resultCode)
                                      ? std::string()
                                      : refusalOf(reply, request.frame, request.replyLen));
}

void CommunicationLoop::count(int resultCode)
{
    ++m_counters.sent;
    if (isGood(resultCode))
        ++m_counters.good;
    else if (resultCode == RESULT_WILL_REPEAT)
        ++m_counters.repeated;
    else
        ++m_counters.givenUp;
}

bool CommunicationLoop::readAll(const std::vector<Variable> &variables, int milliseconds)
{
    m_reads = ReadStates();
    const QList<VAR_ITEM> items = itemsOf(variables);
    m_driver.ReCreatReadVarList(&items);
    QElapsedTimer timer;
    timer.start();
    while (!areRead(variables)) {
        if (timer.hasExpired(milliseconds))
            return false;
        turn();
    }
    return true;
}

bool CommunicationLoop::areRead(const std::vector<Variable> &variables) const
{
    return std::all_of(variables.begin(), variables.end(), [this](const Variable &variable) {
        return m_reads.refusalOf(registersOf(variable)).empty();
    });
}
