// The read requests for the variables of a link.
#pragma once

#include "host/core/links/link.h"
#include "host/core/loading/driver_library.h"
#include "velko_modbus_rtu.h"

#include <QByteArray>

#include <memory>
#include <string>
#include <vector>

namespace velko
{

/// One request of the cyclic list, as the driver builds it.
struct PlannedRequest {
    RW_VAR var; ///< varKind an AREA_...; ready for AddListReadVar
    QByteArray frame;
    int replyLength; ///< bytes
};

/// The driver plans for one station at a time; a host with several stations joins the lists of all
/// of them. The planner has its own copy of the driver, which is not used on a line, so that the
/// copy in use is not disturbed.
class RequestPlanner
{
public:
    /// Throws std::runtime_error if the driver library file cannot be loaded.
    explicit RequestPlanner(const std::string &library);

    /// Stations in ascending order.
    std::vector<PlannedRequest> plan(const Link &link);

private:
    void planStation(const Link &link, int station, std::vector<PlannedRequest> &requests);

    std::unique_ptr<DriverLibrary> m_driver;
    ComInfo m_info;
};

} // namespace velko
