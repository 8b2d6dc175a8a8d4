// What the driver's callbacks report. They carry no pointer of the host's, so there is one
// collection for the process; one communication thread fills and reads it.
#pragma once

#include "host/driver_library.h"

#include <vector>

struct RequestReport {
    int linkId;
    int ownerId;
    int ownerTag;
    int status; ///< REQUEST_DONE or REQUEST_GIVEN_UP
};

/// Starts a new collection and has the driver fill it.
void collectReports(const DriverLibrary &driver);

/// Reports so far, oldest first.
const std::vector<RequestReport> &requestReports();

/// Requests given up so far, reads included.
int giveUps();
