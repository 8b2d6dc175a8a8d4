// A driver on an imaginary line that answers at once and always well: what the benchmarks measure.
#pragma once

#include "host/core/loading/driver_copy.h"

#include <array>
#include <memory>

/// A freshly loaded copy of the driver: maxRegs 125, station 1, device mode.
class BenchLink
{
public:
    BenchLink();

    /// Makes the cyclic list `requests` requests for `registers` registers each, one behind the other
    /// and from register 0 on again where they pass 60,000. Throws std::logic_error where an answer is
    /// taken for a bad one.
    void poll(int requests, int registers);

    /// One exchange, where there is something to send. The answer's bytes, which a host would receive,
    /// are made beforehand.
    void exchange()
    {
        const Protocol *const request = m_driver->ComCommunication();
        if (!request)
            return;
        const QByteArray &reply = m_replies[static_cast<size_t>(request->replyLen)];
        m_driver->DataCom(&reply, reply.size());
    }

    /// Carries out all queued writes. Throws std::logic_error should they not end.
    void drain();

    const velko::DriverLibrary &driver() const { return *m_driver; }

private:
    std::unique_ptr<velko::DriverLibrary> m_driver;
    ComInfo m_info;
    std::array<QByteArray, 256> m_replies; // by their length
};

/// Variables of one word each, in random order. Near ones touch one another, far ones are too far
/// apart to be merged. For lists alone: the last ones lie beyond what a line can address.
enum class Spacing { NEAR, FAR };
QList<VAR_ITEM> shuffledWords(int variables, Spacing spacing);
