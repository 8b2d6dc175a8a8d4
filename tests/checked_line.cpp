#include "tests/checked_line.h"

namespace
{

const int OWNER_TAG_OF_POLLS = -1;

bool isRmwRead(const RW_VAR &var)
{
    return var.rmwMark == -1;
}

int areaOf(int kind)
{
    return AREA_INPUT + kind % 3;
}

} // namespace

CheckedLine::CheckedLine() : m_store(*static_cast<StationImages *>(driver.symbol("DataStorage")))
{
    link.perVarStation = 1;
}

CheckedLine::Range CheckedLine::rangeOf(const PolledVariable &variable) const
{
    const int unitBits[] = {1, 8, 16, 16};
    const int offset = driver.PLCAddressChangeIntef(variable.kind, variable.address);
    const int bit = variable.kind < KIND_INPUT_BYTE ? offset : 8 * offset;
    const int units =
        variable.length + (variable.kind < KIND_INPUT_DWORD ? 0 : variable.length % 2);
    return {bit / 16, (bit % 16 + units * unitBits[variable.kind / 3] + 15) / 16};
}

RW_VAR CheckedLine::recordOf(const PolledVariable &variable, int ownerId, int ownerTag) const
{
    RW_VAR record;
    record.ownerId = ownerId;
    record.ownerTag = ownerTag;
    record.areaNo = link.localArea;
    record.addrText = variable.address;
    record.varKind = variable.kind;
    record.station = link.perVarStation != 0 ? variable.station : link.defaultStation;
    record.count = variable.length;
    return record;
}

// --- Calls of the host ---

void CheckedLine::rebuild(const std::vector<PolledVariable> &items)
{
    QString list;
    m_polled = items;
    for (PolledVariable &item : m_polled) {
        list += QString(" %1:%2:%3").arg(item.kind).arg(item.address).arg(item.length);
        item.station = link.defaultStation;
    }
    DriverUnderTest::rebuild(qPrintable(list));
    m_cyclic.entries.assign(core.readList.begin(), core.readList.end());
}

void CheckedLine::poll(const PolledVariable &registers)
{
    RW_VAR request = recordOf(registers, 0, OWNER_TAG_OF_POLLS);
    request.station = registers.station;
    request.varKind = areaOf(registers.kind);
    request.addr = rangeOf(registers).first;
    driver.AddListReadVar(&request);
    m_cyclic.entries.push_back(request);
    m_polled.push_back(registers);
}

void CheckedLine::set(const PolledVariable &target, int ownerId, int ownerTag, unsigned random)
{
    const bool isSingle = target.kind < KIND_INPUT_WORD;
    const int units = isSingle ? target.length : rangeOf(target).count;
    const int unitBytes = isSingle ? 1 : 2;
    QByteArray value(units * unitBytes, '\0');
    for (char &byte : value) {
        random = random * 1103515245U + 12345U;
        byte = static_cast<char>(target.kind < KIND_INPUT_BYTE ? random >> 17 & 1U : random >> 17);
    }
    driver.SetRegisterData("", target.kind, target.address, target.station, &value, target.length,
                           ownerId, ownerTag);
    const int offset = driver.PLCAddressChangeIntef(target.kind, target.address);
    RW_VAR piece = recordOf(target, ownerId, ownerTag);
    for (int start = 0; start < units; start += piece.count) {
        piece.addr = offset + start * unitBytes;
        piece.count = isSingle ? 1 : std::min(units - start, link.maxRegs);
        piece.value = value.mid(start * unitBytes, piece.count * unitBytes);
        m_writes.queueWrite(piece);
    }
}

void CheckedLine::once(const PolledVariable &target, int ownerId, int ownerTag)
{
    RW_VAR request = recordOf(target, ownerId, ownerTag);
    driver.AddListOnceReadVar(&request, QUEUE_CHECKED);
    const Range range = rangeOf(target);
    RW_VAR piece = recordOf(target, ownerId, ownerTag);
    piece.varKind = areaOf(target.kind);
    for (int start = 0; start < range.count; start += link.maxRegs) {
        piece.addr = range.first + start;
        piece.count = std::min(range.count - start, link.maxRegs);
        m_onceReads.queueOnceRead(piece);
    }
}

void CheckedLine::enable(int station, bool enabled)
{
    driver.EnCommStation(station, enabled ? 1 : 0);
    if (enabled)
        m_disabled.erase(station);
    else
        m_disabled.insert(station);
}

void CheckedLine::passTime()
{
    if (m_framesLeft == 1)
        return;
    m_slaves.passTime();
    m_expected.passTime();
}

// --- One exchange ---

// Returns the list that the next request comes from, or null if nothing is due.
QueueModel *CheckedLine::takeTurn()
{
    if (!m_writes.entries.empty() && m_writeBurst++ < 5 && m_writes.due(m_disabled))
        return &m_writes;
    if (!m_onceReads.entries.empty() && m_onceBurst++ < 5 && m_onceReads.due(m_disabled))
        return &m_onceReads;
    m_writeBurst = m_onceBurst = 0;
    return m_cyclic.due(m_disabled) ? &m_cyclic : nullptr;
}

void CheckedLine::begin(const Protocol &sent)
{
    const RW_VAR &var = sent.var;
    m_framesLeft = isRmwRead(var) ? 2 : 1;
    m_request = m_source->entries.front();
    EXPECT_EQ(std::make_tuple(var.ownerId, var.ownerTag, var.station, var.varKind, var.count),
              std::make_tuple(m_request.ownerId, m_request.ownerTag, m_request.station,
                              m_request.varKind, m_request.count))
        << "wrong order";
    EXPECT_TRUE(isRmwRead(var) || var.addr == m_request.addr) << "wrong order";
    EXPECT_EQ(m_source == &m_writes, isRmwRead(var) || var.rwFlag == REQUEST_WRITE);
}

QByteArray CheckedLine::carry(const Protocol &sent, LineFault fault, int bit)
{
    if (fault == REQUEST_LOST)
        return QByteArray();
    if (fault == EXCEPTION_REPLY)
        return SlaveMemory::exception(sent.frame);
    QByteArray reply = m_slaves.responseTo(sent.frame);
    if (sent.var.rwFlag == REQUEST_WRITE)
        m_expected.write(m_request);
    EXPECT_EQ(reply.size(), sent.replyLen);
    bit %= 8 * reply.size();
    if (fault == BIT_FLIPPED)
        reply[bit / 8] = static_cast<char>(reply.at(bit / 8) ^ 1 << bit % 8);
    if (fault == ONE_LONG)
        reply.append('\0');
    return fault == REPLY_LOST ? QByteArray() : fault == ONE_SHORT ? reply.chopped(1) : reply;
}

void CheckedLine::exchange(LineFault fault, int bit)
{
    const StationImages beforeTurn = m_store;
    const Protocol *const next = driver.ComCommunication();
    if (m_framesLeft == 0)
        m_source = takeTurn();
    const bool showsWrite = m_framesLeft == 0 && m_source == &m_writes && !m_failing;
    ASSERT_EQ(next != nullptr, m_source != nullptr);
    if (!next)
        return;
    const Protocol sent = *next;
    if (m_framesLeft == 0)
        begin(sent);
    else if (m_repeats)
        EXPECT_EQ(sent.frame, m_lastFrame);
    else
        EXPECT_EQ(sent.var.rwFlag, REQUEST_WRITE) << "the write frame must follow its read";
    EXPECT_TRUE(showsWrite || m_store == beforeTurn) << "the store changed without a write request";
    m_lastFrame = sent.frame;
    replyBytes = sent.replyLen;
    ++exchanges;

    const QByteArray reply = carry(sent, fault, bit);
    const StationImages before = m_store;
    const int verdict = answer(reply, reply.size());
    std::string events = "none";
    if (fault != NO_FAULT) {
        events = expectFailure(fault, verdict);
    } else {
        EXPECT_EQ(verdict, RESULT_GOOD);
        m_repeats = false;
        if (--m_framesLeft == 0)
            events = endRequest(true);
    }
    m_failing = fault != NO_FAULT;
    EXPECT_EQ(takeEvents(), events);
    ASSERT_EQ(core.writeList.size(), m_writes.entries.size());
    ASSERT_EQ(core.onceReadList.size(), m_onceReads.entries.size());
    if (fault == NO_FAULT && sent.var.rwFlag == REQUEST_READ && !isRmwRead(sent.var))
        expectStored(sent.var.station, sent.var.varKind, {sent.var.addr, sent.var.count});
    else
        EXPECT_EQ(m_store, before) << "the store changed without a good read";
}

std::string CheckedLine::expectFailure(LineFault fault, int verdict)
{
    m_repeats = ++m_failures <= link.retryLimit;
    if (m_repeats) {
        EXPECT_EQ(verdict, RESULT_WILL_REPEAT);
        return "none";
    }
    const int codes[] = {0, 41, 41, 71, 71, 71, 11};
    const int owner = m_request.ownerId;
    EXPECT_EQ(verdict, codes[fault] + (owner >= 0 && owner < 12 ? owner : 0));
    m_failures = 0;
    m_framesLeft = 0;
    return endRequest(false);
}

std::string CheckedLine::endRequest(bool good)
{
    return m_source == &m_cyclic ? m_source->rotate(good) : m_source->end(link, good);
}

// --- Final state ---

void CheckedLine::expectStored(int station, int area, const Range &range)
{
    QByteArray values;
    driver.GetRegisterData(0, area, QString::number(range.first), station, &values, range.count);
    for (int i = 0; i < range.count; ++i) {
        const int value = m_slaves.read(station, area, range.first + i);
        ASSERT_EQ(values.mid(2 * i, 2),
                  QByteArray(1, static_cast<char>(value)) + static_cast<char>(value >> 8))
            << "station " << station << ", area " << area << ", register " << range.first + i;
    }
}

void CheckedLine::finishAndCheck()
{
    // A turn may end a burst without a frame, a request can take two frames, and a cyclic read can
    // come after every fifth request.
    for (size_t turns = 4 * queued() + 20; turns > 0 && (queued() > 0 || m_framesLeft > 0); --turns)
        exchange();
    EXPECT_EQ(queued(), 0);
    EXPECT_TRUE(core.writeList.isEmpty() && core.onceReadList.isEmpty());
    passTime();
    for (int i = 0; i < core.readList.size(); ++i)
        exchange();
    EXPECT_TRUE(core.pendingList.isEmpty());
    EXPECT_TRUE(m_slaves == m_expected)
        << "a register changed without a write, or a write did not change it";
    for (const PolledVariable &variable : m_polled) {
        if (m_disabled.count(variable.station) == 0)
            expectStored(variable.station, areaOf(variable.kind), rangeOf(variable));
    }
}
