// Which requests the variables of a link become.
#pragma once

#include "host/core/links/link.h"
#include "host/core/loading/driver_copy.h"

namespace velko
{

/// One request of the cyclic list, as the driver made it.
struct PlannedRequest {
    RW_VAR var; ///< varKind an AREA_...; ready for AddListReadVar
    QByteArray frame;
    int replyLength; ///< bytes
};

/// The driver's own list knows only one station; a host with several has to ask it for each station
/// and put the lists together. It asks a copy of the driver that never sees a line, so that the one
/// at work is not disturbed.
class RequestPlanner
{
public:
    /// Throws std::runtime_error where the driver cannot be loaded.
    explicit RequestPlanner(const std::string &library);

    /// Stations in ascending order.
    std::vector<PlannedRequest> plan(const Link &link);

private:
    void planStation(const Link &link, int station, std::vector<PlannedRequest> &requests);

    std::unique_ptr<DriverLibrary> m_driver;
    ComInfo m_info;
};

} // namespace velko
