#include "host/request_reports.h"

namespace
{

std::vector<RequestReport> reports;
int failures = 0;

// Both run inside DataCom with the driver's list lock held: they note what happened and return.
// What is to follow, a write offered again for instance, waits until DataCom has returned.
void onRequestDone(int linkId, int ownerId, int ownerTag, int status)
{
    reports.push_back({linkId, ownerId, ownerTag, status});
}

void onCommFail(QList<RW_VAR>, int, int)
{
    ++failures;
}

} // namespace

void collectReports(const DriverLibrary &driver)
{
    reports.clear();
    failures = 0;
    driver.RegistCallBackFuncIntf(onRequestDone, onCommFail);
}

const std::vector<RequestReport> &requestReports()
{
    return reports;
}

int giveUps()
{
    return failures;
}
