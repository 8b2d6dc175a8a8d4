#include "host/core/driver/driver_link.h"

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
    m_link = &link;
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

int DriverLink::judge(const Protocol &request, const QByteArray &reply, bool isLastTry)
{
    m_info.retryLimit = isLastTry ? 0 : m_link->retriesOf(request.var.station);
    const int resultCode = m_driver->DataCom(&reply, reply.size())->retCode;
    // The driver counts the failures of all requests together.
    if (m_link->ownFailuresOnly && velko_result_is_good(resultCode) && isRequestComplete())
        m_info.retryCount = 0;
    return resultCode;
}

bool DriverLink::queueWrite(const Variable &variable, const QByteArray &value, int maxRegs,
                            int ownerTag)
{
    m_info.maxRegs = maxRegs;
    return set(variable, value, ownerTag) > 0;
}

void DriverLink::show(const Variable &variable, const QByteArray &value)
{
    m_info.commMode = COMM_STORE_ONLY;
    set(variable, value, 0);
    m_info.commMode = COMM_DEVICE;
}

int DriverLink::set(const Variable &variable, const QByteArray &value, int ownerTag) const
{
    return m_driver->SetRegisterData(QString::fromStdString(variable.name), variable.kind,
                                     QString::fromStdString(variable.address), variable.station,
                                     &value, lengthOf(variable), 0, ownerTag);
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
