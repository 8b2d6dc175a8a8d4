#include "bench/bench_link.h"

#include "host/core/line/crc16.h"
#include "host/core/loading/driver_copy.h"

#include <algorithm>
#include <random>
#include <stdexcept>
#include <vector>

using namespace velko;

namespace
{

const int LAST_REGISTER = 60000; // leaves room for the longest request after it
const int MAX_REGS = 125;        // 255 bytes of a reply
const int MAX_DRAIN_TURNS = 10 * LIMIT_QUEUE_ENTRIES;

// The driver does not check station and function.
QByteArray goodReply(int bytes)
{
    QByteArray reply(bytes - 2, '\1');
    return reply.append(crc16(reply));
}

} // namespace

BenchLink::BenchLink() : m_driver(loadDriverCopy(DRIVER_LIBRARY))
{
    m_info.maxRegs = MAX_REGS;
    m_info.defaultStation = 1;
    m_info.commMode = COMM_DEVICE;
    m_driver->SetComInfo(&m_info);
    for (size_t bytes = 2; bytes < m_replies.size(); ++bytes)
        m_replies[bytes] = goodReply(static_cast<int>(bytes));
}

void BenchLink::poll(int requests, int registers)
{
    const QList<VAR_ITEM> none;
    m_driver->ReCreatReadVarList(&none);
    RW_VAR request;
    request.ownerTag = -1;
    request.station = 1;
    request.varKind = AREA_HOLDING;
    request.count = registers;
    for (int i = 0; i < requests; ++i) {
        request.addr = static_cast<int>(static_cast<qint64>(i) * registers % LAST_REGISTER);
        m_driver->AddListReadVar(&request);
    }
    const Protocol *const sent = m_driver->ComCommunication();
    const QByteArray &reply = m_replies.at(static_cast<size_t>(sent->replyLen));
    if (m_driver->DataCom(&reply, reply.size())->retCode != RESULT_GOOD)
        throw std::logic_error("the driver rejects a good reply");
}

void BenchLink::drain()
{
    for (int i = 0; i < MAX_DRAIN_TURNS; ++i) {
        if (m_driver->AddListWriteVar(nullptr, QUEUE_CHECKED) == 0)
            return;
        exchange();
    }
    throw std::logic_error("the write queue does not become empty");
}

QList<VAR_ITEM> shuffledWords(int variables, Spacing spacing)
{
    const int step = spacing == Spacing::NEAR ? 1 : 2 * MAX_REGS;
    std::vector<int> places(static_cast<size_t>(variables));
    for (size_t i = 0; i < places.size(); ++i)
        places[i] = static_cast<int>(i) * step;
    std::shuffle(places.begin(), places.end(), std::mt19937(1));
    QList<VAR_ITEM> items;
    for (const int place : places) {
        VAR_ITEM item;
        item.kind = KIND_HOLDING_WORD;
        item.addrText = QString::number(place);
        item.length = 1;
        items.append(item);
    }
    return items;
}
