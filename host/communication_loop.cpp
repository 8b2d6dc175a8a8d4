#include "host/communication_loop.h"

#include <QElapsedTimer>
#include <QThread>

namespace
{

// A turn without a request costs nothing on the line; without a pause it would cost the processor.
const int IDLE_PAUSE = 1; // milliseconds

} // namespace

CommunicationLoop::CommunicationLoop(const DriverLibrary &driver, ComInfo &link, SerialLine &line)
    : m_driver(driver),
      m_link(link),
      m_line(line)
{
}

Turn CommunicationLoop::turn()
{
    const Protocol *const request = m_driver.ComCommunication();
    if (!request) {
        QThread::msleep(IDLE_PAUSE);
        return Turn::Nothing;
    }
    const QByteArray reply = m_line.exchange(request->frame, request->replyLen);
    ++m_counters.sent;
    const Turn result = judge(m_driver.DataCom(&reply, reply.size())->retCode);
    // The driver adds up the failures of all requests; each is to be given up for its own alone.
    if (result == Turn::Good && m_link.frameDone >= m_link.frameTotal)
        m_link.retryCount = 0;
    return result;
}

Turn CommunicationLoop::judge(int resultCode)
{
    switch (resultCode) {
    case RESULT_GOOD:
    case RESULT_REMOTE_NOT_STORED:
        ++m_counters.good;
        return Turn::Good;
    case RESULT_WILL_REPEAT:
        ++m_counters.repeated;
        return Turn::Repeated;
    default:
        ++m_counters.givenUp;
        return Turn::GivenUp;
    }
}

bool CommunicationLoop::readAll(int milliseconds, const QList<VAR_ITEM> &items)
{
    m_driver.ReCreatReadVarList(&items); // starts a new cycle
    QElapsedTimer timer;
    timer.start();
    while (!m_link.cycleDone) {
        if (timer.hasExpired(milliseconds))
            return false;
        turn();
    }
    return true;
}
