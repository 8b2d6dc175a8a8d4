// A copy of the driver and its ComInfo, for the communication loop of one link.
#pragma once

#include "host/core/links/link.h"
#include "host/core/loading/driver_library.h"
#include "host/core/plan/request_planner.h"
#include "host/core/variables/variable.h"
#include "velko_modbus_rtu.h"

#include <QByteArray>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velko
{

/// Used on the communication thread, except value(). The driver has one set of settings. Those that
/// differ between stations are set before each call that uses them.
class DriverLink
{
public:
    /// ownerTag of cyclic reads. Writes have positive numbers.
    static const int CYCLIC_OWNER_TAG = -1;

    /// Loads a copy of the driver. Throws std::runtime_error.
    explicit DriverLink(const std::string &libraryFile);

    /// The copy of the driver, owned by this object.
    const DriverLibrary &driver() const { return *m_driver; }

    /// Replaces the cyclic list and the link's settings. Queued writes and stored values are kept.
    /// `link` is the caller's and must not change or end before the next call.
    void load(const Link &link, const std::vector<PlannedRequest> &plan);

    /// Returns a copy of the next request, because the driver's record is valid only until judge().
    /// No value: there is no request in this turn.
    std::optional<Protocol> next() const;

    /// Passes the response to that request to the driver; `reply` is empty if there was none.
    /// `isLastTry`: if it fails, the request is given up without further retries. Returns one of
    /// RESULT_...
    int judge(const Protocol &request, const QByteArray &reply, bool isLastTry);

    /// True if every frame of the current request has a good response.
    bool isRequestComplete() const { return m_info.frameDone >= m_info.frameTotal; }

    /// Queues a write in pieces of at most `maxRegs` registers. `value`: bytes as for
    /// SetRegisterData. False if it is not queued.
    bool queueWrite(const Variable &variable, const QByteArray &value, int maxRegs, int ownerTag);

    /// Puts a value that the PLC has acknowledged into the store. The driver does so while it builds
    /// the frame, but not after a failed exchange.
    void show(const Variable &variable, const QByteArray &value);

    /// Number of pieces of writes in the driver's queue.
    int queuedWrites() const;

    /// Returns the value in the driver's store, in the bytes of GetRegisterData. Any thread.
    QByteArray value(const Variable &variable) const;

private:
    int set(const Variable &variable, const QByteArray &value, int ownerTag) const;

    const std::unique_ptr<DriverLibrary> m_driver;
    ComInfo m_info;
    const Link *m_link = nullptr;
};

} // namespace velko
