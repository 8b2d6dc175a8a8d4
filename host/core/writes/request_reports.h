// Collects what the driver's callbacks report. They carry no pointer of the host's, but they run on the
// communication thread, so each such thread has a collection of its own.
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

/// Collects the reports of this driver from now on.
void collectReports(const DriverLibrary &driver);

/// Reports on this thread since the last call, oldest first.
std::vector<RequestReport> takeReports();

} // namespace velko
