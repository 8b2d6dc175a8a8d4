#include "host/core/plan/request_planner.h"

#include "host/core/loading/driver_copy.h"

#include <algorithm>
#include <iterator>

namespace velko
{

RequestPlanner::RequestPlanner(const std::string &library) : m_driver(loadDriverCopy(library))
{
    m_info.retryLimit = 0; // each failed exchange gives up its request
    m_driver->SetComInfo(&m_info);
}

std::vector<PlannedRequest> RequestPlanner::plan(const Link &link)
{
    std::vector<PlannedRequest> requests;
    for (const int station : link.stations())
        planStation(link, station, requests);
    return requests;
}

void RequestPlanner::planStation(const Link &link, int station,
                                 std::vector<PlannedRequest> &requests)
{
    std::vector<Variable> variables;
    std::copy_if(link.variables.begin(), link.variables.end(), std::back_inserter(variables),
                 [station](const Variable &variable) { return variable.station == station; });
    m_info.defaultStation = station;
    m_info.maxRegs = link.maxRegsOf(station);
    const QList<VAR_ITEM> items = itemsOf(variables);
    const int count = m_driver->ReCreatReadVarList(&items);
    const QByteArray nothing;
    for (int i = 0; i < count; ++i) {
        const Protocol *const request = m_driver->ComCommunication();
        if (!request)
            return;
        requests.push_back({request->var, request->frame, request->replyLen});
        m_driver->DataCom(&nothing, 0); // gives up the request; the next one follows
    }
}

} // namespace velko
