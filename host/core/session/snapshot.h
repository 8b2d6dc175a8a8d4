// Values and states of links at one moment.
#pragma once

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

} // namespace velko
