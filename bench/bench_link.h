// A driver on a simulated line without delay or faults, for the benchmarks.
#pragma once

#include "host/core/loading/driver_library.h"
#include "velko_modbus_rtu.h"

#include <QByteArray>
#include <QList>

#include <array>
#include <cstddef>
#include <memory>

/// A freshly loaded copy of the driver: maxRegs 125, station 1, device mode.
class BenchLink
{
public:
    BenchLink();

    /// Fills the cyclic list with `requests` requests for `registers` registers each, at
    /// consecutive addresses that begin again at 0 after 60,000. Throws std::logic_error if the
    /// driver rejects a good reply.
    void poll(int requests, int registers);

    /// Makes one exchange if there is something to send. The bytes of the reply, which a host would
    /// receive, are prepared in advance.
    void exchange()
    {
        const Protocol *const request = m_driver->ComCommunication();
        if (!request)
            return;
        const QByteArray &reply = m_replies[static_cast<size_t>(request->replyLen)];
        m_driver->DataCom(&reply, reply.size());
    }

    /// Executes all queued writes. Throws std::logic_error if the queue does not become empty.
    void drain();

    void setMaxRegs(int maxRegs) { m_info.maxRegs = maxRegs; }

    const velko::DriverLibrary &driver() const { return *m_driver; }

private:
    std::unique_ptr<velko::DriverLibrary> m_driver;
    ComInfo m_info;
    std::array<QByteArray, 256> m_replies; // by length
};

/// Returns variables of one word each, in random order. NEAR variables touch one another, FAR ones
/// are too far apart to merge. Only for lists: the last variables have addresses above 65,535.
enum class Spacing { NEAR, FAR };
QList<VAR_ITEM> shuffledWords(int variables, Spacing spacing);
