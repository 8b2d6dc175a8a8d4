// A link: one serial line with its settings and its variables.
#pragma once

#include "host/core/line/line_settings.h"
#include "host/core/variables/variable.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace velko
{

/// What differs from the link's settings for one station.
struct StationSettings {
    std::optional<int> responseTimeout; ///< milliseconds
    std::optional<int> retries;
    std::optional<int> maxRegs;
};

struct Link {
    std::string name;
    LineSettings line;
    int maxRegs = 100;           ///< maximum number of registers per request
    int retries = 2;             ///< of a request before it is given up
    bool ownFailuresOnly = true; ///< failures of other requests do not count as retries
    int queueAgain = 0;          ///< how many times a given-up write is queued again
    int staleAfter = 5000;       ///< milliseconds after which a value is stale
    std::map<int, StationSettings> stationSettings; ///< by station
    std::vector<Variable> variables;

    // Settings that apply to one station.

    int responseTimeoutOf(int station) const; ///< milliseconds
    int retriesOf(int station) const;
    int maxRegsOf(int station) const;

    /// True if a variable can be written.
    bool isWritten() const;
    /// Returns the station numbers of the variables in ascending order, without duplicates.
    std::vector<int> stations() const;
};

} // namespace velko
