// Values and states of links at one moment.
#pragma once

#include "host/core/links/link.h"
#include "host/core/loop/communication_loop.h"
#include "host/core/status/link_status.h"
#include "host/core/variables/variable.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velko
{

struct ValueRow {
    std::string link; ///< name of the link
    Variable variable;
    std::string text; ///< the value; "-" if it was never read
    ValueState state;
};

struct LinkRow {
    std::string name;
    std::string port; ///< the device, or the reason why no port is open
    bool isOpen;
    std::int64_t cycles;
    std::vector<StationStatus> stations;
};

struct Snapshot {
    std::vector<ValueRow> values;
    std::vector<LinkRow> links;
};

/// Returns the link's variables as the loop has them at present. A value may be newer than its
/// state, but not older. Any thread may call.
Snapshot snapshotOf(const Link &link, const CommunicationLoop &loop);

} // namespace velko
