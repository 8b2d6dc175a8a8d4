// One copy of the driver and its ComInfo, as the communication loop of one link uses them.
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

/// Communication thread, but for value().
class DriverLink
{
public:
    /// ownerTag of the cyclic reads, and of the reads that readOnce() queues. Writes have positive ones.
    static const int CYCLIC_OWNER_TAG = -1;
    static const int PROBE_OWNER_TAG = -2;

    /// Loads a copy of the driver. Throws std::runtime_error.
    explicit DriverLink(const std::string &libraryFile);

    const DriverLibrary &driver() const { return *m_driver; }

    /// Replaces the cyclic list and the link's settings. Queued writes and stored values stay.
    void load(const Link &link, const std::vector<PlannedRequest> &plan);

    /// A copy of the next request; the driver's own is gone after judge(). None: nothing in this turn.
    std::optional<Protocol> next() const;

    /// Hands over the response to that request; empty if none came. `isLastTry`: a failure gives the
    /// request up, whatever its retries. Returns RESULT_...
    int judge(const QByteArray &reply, bool isLastTry);

    /// Every frame of the current request was answered.
    bool isRequestComplete() const { return m_info.frameDone >= m_info.frameTotal; }

    /// Queues one read of the variable's first unit.
    void readOnce(const Variable &variable);

    int queuedWrites() const;

    /// What the store holds. Any thread.
    QByteArray value(const Variable &variable) const;

private:
    const std::unique_ptr<DriverLibrary> m_driver;
    ComInfo m_info;
    int m_retries = 0;
    bool m_ownFailuresOnly = true;
};

} // namespace velko
