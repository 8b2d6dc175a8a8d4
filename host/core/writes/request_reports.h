// Collects the reports of the driver's callbacks. A callback has no context pointer, but it runs on
// the communication thread. So each thread has its own collection.
#pragma once

#include "host/core/loading/driver_library.h"

#include <vector>

namespace velko
{

struct RequestReport {
    int ownerId;  ///< as in RW_VAR
    int ownerTag; ///< as in RW_VAR
    int status;   ///< REQUEST_DONE or REQUEST_GIVEN_UP
};

/// Registers the callback with the driver.
void collectReports(const DriverLibrary &driver);

/// Returns the reports on this thread since the last call, oldest first.
std::vector<RequestReport> takeReports();

} // namespace velko
