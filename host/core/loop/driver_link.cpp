#include "host/core/loop/driver_link.h"

#include "host/core/loading/driver_copy.h"

namespace velko
{

DriverLink::DriverLink(const std::string &libraryFile) : m_driver(loadDriverCopy(libraryFile))
{
    m_info.commMode = COMM_DEVICE;
    m_info.perVarStation = 1;
    m_driver->SetComInfo(&m_info);
}

void DriverLink::load(const Link &link, const std::vector<PlannedRequest> &plan)
{
    m_retries = link.retries;
    m_ownFailuresOnly = link.ownFailuresOnly;
    m_info.maxRegs = link.maxRegs;
    m_info.retryLimit = link.retries;
    const QList<VAR_ITEM> none;
    m_driver->ReCreatReadVarList(&none);
    for (const PlannedRequest &request : plan)
        m_driver->AddListReadVar(&request.var);
}

std::optional<Protocol> DriverLink::next() const
{
    const Protocol *const request = m_driver->ComCommunication();
    return request ? std::optional<Protocol>(*request) : std::nullopt;
}

int DriverLink::judge(const QByteArray &reply, bool isLastTry)
{
    if (isLastTry)
        m_info.retryLimit = 0;
    const int resultCode = m_driver->DataCom(&reply, reply.size())->retCode;
    m_info.retryLimit = m_retries;
    // The driver counts the failures of all requests together.
    if (m_ownFailuresOnly && velko_result_is_good(resultCode) && isRequestComplete())
        m_info.retryCount = 0;
    return resultCode;
}

void DriverLink::readOnce(const Variable &variable)
{
    RW_VAR request;
    request.ownerTag = PROBE_OWNER_TAG;
    request.areaNo = m_info.localArea;
    request.station = variable.station;
    request.varKind = variable.kind;
    request.addrText = QString::fromStdString(variable.address);
    request.count = 1;
    m_driver->AddListOnceReadVar(&request, QUEUE_CHECKED);
}

int DriverLink::queuedWrites() const
{
    return m_driver->AddListWriteVar(nullptr, QUEUE_CHECKED);
}

QByteArray DriverLink::value(const Variable &variable) const
{
    QByteArray value;
    m_driver->GetRegisterData(0, variable.kind, QString::fromStdString(variable.address),
                              variable.station, &value, lengthOf(variable));
    return value;
}

} // namespace velko
