#include "host/core/session/snapshot.h"

namespace velko
{

namespace
{

// The value must not be older than its state. And the store shows a write before the PLC has it: if
// one has begun meanwhile, the later state counts.
ValueRow rowOf(const std::string &link, const Variable &variable, const CommunicationLoop &loop)
{
    ValueState state = loop.status().stateOf(variable);
    const std::string text = state.age ? textOf(variable, loop.value(variable)) : "-";
    const ValueState later = loop.status().stateOf(variable);
    if (later.freshness != Freshness::GOOD)
        state = later;
    return {link, variable, text, state};
}

} // namespace

Snapshot snapshotOf(const Link &link, const CommunicationLoop &loop)
{
    const LinkStatus &status = loop.status();
    Snapshot snapshot;
    snapshot.links.push_back(
        {link.name, status.portText(), status.isPortOpen(), status.cycles(), status.stations()});
    snapshot.values.reserve(link.variables.size());
    for (const Variable &variable : link.variables)
        snapshot.values.push_back(rowOf(link.name, variable, loop));
    return snapshot;
}

} // namespace velko
