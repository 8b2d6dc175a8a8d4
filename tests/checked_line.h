// A line in virtual time, with the driver on one side, slaves on the other, and faults between
// them. Each exchange is compared with what the host's header promises; every difference fails the
// test.
#pragma once

#include "tests/driver_under_test.h"
#include "tests/queue_model.h"
#include "tests/slave_memory.h"
#include "velko_modbus_rtu.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <set>
#include <string>
#include <vector>

enum LineFault {
    NO_FAULT,
    REQUEST_LOST,
    REPLY_LOST,
    ONE_SHORT,
    ONE_LONG,
    EXCEPTION_REPLY,
    BIT_FLIPPED
};

struct PolledVariable {
    int kind;
    QString address;
    int station;
    int length; // in the kind's units
};

class CheckedLine : public DriverUnderTest
{
public:
    CheckedLine();

    // Calls of a host. The values of writes are derived from `random`.
    void rebuild(const std::vector<PolledVariable> &items); ///< uses defaultStation
    void poll(const PolledVariable &registers);
    void set(const PolledVariable &target, int ownerId, int ownerTag, unsigned random);
    void once(const PolledVariable &target, int ownerId, int ownerTag);
    void enable(int station, bool enabled);

    /// Runs one turn, with one frame or none. `bit` counts modulo the bits of the reply.
    void exchange(LineFault fault = NO_FAULT, int bit = 0);

    /// Makes good exchanges until the queues are empty, then one full cycle, and checks the final
    /// state.
    void finishAndCheck();

    /// Changes the slaves' registers, but not between the two frames of a read-modify-write.
    void passTime();

    size_t queued() const { return m_writes.entries.size() + m_onceReads.entries.size(); }

    int exchanges = 0;
    int replyBytes = 0; ///< expected length of the last reply

private:
    struct Range {
        int first; // register
        int count; // registers
    };

    Range rangeOf(const PolledVariable &variable) const;
    RW_VAR recordOf(const PolledVariable &variable, int ownerId, int ownerTag) const;
    QueueModel *takeTurn();
    void begin(const Protocol &sent);
    QByteArray carry(const Protocol &sent, LineFault fault, int bit);
    std::string expectFailure(LineFault fault, int verdict);
    std::string endRequest(bool good);
    void expectStored(int station, int area, const Range &range);

    const StationImages &m_store;
    SlaveMemory m_slaves;
    SlaveMemory m_expected; // result of the writes that reached a slave
    QueueModel m_writes;
    QueueModel m_onceReads;
    QueueModel m_cyclic;
    int m_writeBurst = 0;
    int m_onceBurst = 0;
    std::set<int> m_disabled;
    std::vector<PolledVariable> m_polled;

    QueueModel *m_source = nullptr; // list of the request in progress
    RW_VAR m_request;
    QByteArray m_lastFrame;
    int m_framesLeft = 0;
    bool m_repeats = false;
    bool m_failing = false;
    int m_failures = 0; // since the last give-up
};
