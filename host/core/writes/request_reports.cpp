#include "host/core/writes/request_reports.h"

namespace velko
{

namespace
{

thread_local std::vector<RequestReport> reports;

// Runs inside DataCom with the driver's list lock held, so it must not call the driver. A write is
// queued again after DataCom has returned.
void onRequestDone(int, int ownerId, int ownerTag, int status)
{
    reports.push_back({ownerId, ownerTag, status});
}

} // namespace

void collectReports(const DriverLibrary &driver)
{
    driver.RegistCallBackFuncIntf(onRequestDone, nullptr);
}

std::vector<RequestReport> takeReports()
{
    std::vector<RequestReport> taken;
    taken.swap(reports);
    return taken;
}

} // namespace velko
