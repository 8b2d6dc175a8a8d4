// What the driver's callbacks report. They carry no pointer of the host's, but they run on the
// communication thread: each such thread has a collection of its own.
#pragma once

#include "host/core/loading/driver_library.h"

#include <vector>

namespace velko
{

struct RequestReport {
    int ownerId;
    int ownerTag;
    int status; ///< REQUEST_DONE or REQUEST_GIVEN_UP
};

/// From now on the driver's reports are collected.
void collectReports(const DriverLibrary &driver);

/// What was reported on this thread since the last call, oldest first.
std::vector<RequestReport> takeReports();

} // namespace velko
