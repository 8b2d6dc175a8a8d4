// The cyclic requests for the variables of a link.
#pragma once

#include "host/core/links/link.h"
#include "host/core/loading/driver_library.h"
#include "host/core/variables/variable.h"
#include "velko_modbus_rtu.h"

#include <QByteArray>

#include <memory>
#include <string>
#include <vector>

namespace velko
{

/// One request of the cyclic list, as the driver builds it.
struct PlannedRequest {
    RW_VAR var; ///< for AddListReadVar; varKind is one of AREA_...
    QByteArray frame;
    int replyLength; ///< bytes of a good response
};

/// The driver plans the requests to one station at a time. The planner joins the lists of all
/// stations. It has its own copy of the driver, which no line uses. Used by one thread.
class RequestPlanner
{
public:
    /// Throws std::runtime_error if the driver library file cannot be loaded.
    explicit RequestPlanner(const std::string &library);

    /// Returns the requests of all stations, in ascending order of stations.
    std::vector<PlannedRequest> plan(const Link &link);

private:
    void planStation(int station, const std::vector<Variable> &variables,
                     std::vector<PlannedRequest> &requests);

    std::unique_ptr<DriverLibrary> m_driver;
    ComInfo m_info;
};

} // namespace velko
