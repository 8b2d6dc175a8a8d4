#include "host/core/plan/request_planner.h"

#include "host/core/loading/driver_copy.h"

#include <map>

namespace velko
{

RequestPlanner::RequestPlanner(const std::string &library) : m_driver(loadDriverCopy(library))
{
    m_info.retryLimit = 0; // each failed exchange gives up its request
    m_driver->SetComInfo(&m_info);
}

std::vector<PlannedRequest> RequestPlanner::plan(const Link &link)
{
    std::map<int, std::vector<Variable>> stations;
    for (const Variable &variable : link.variables)
        stations[variable.station].push_back(variable);
    std::vector<PlannedRequest> requests;
    for (const auto &[station, variables] : stations) {
        m_info.maxRegs = link.maxRegsOf(station);
        planStation(station, variables, requests);
    }
    return requests;
}

void RequestPlanner::planStation(int station, const std::vector<Variable> &variables,
                                 std::vector<PlannedRequest> &requests)
{
    m_info.defaultStation = station;
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
