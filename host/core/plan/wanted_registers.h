// The registers that variables read.
#pragma once

#include "host/core/links/link.h"
#include "host/core/variables/variable.h"

#include <map>
#include <utility>
#include <vector>

namespace velko
{

/// Made once for a link, so that the cost of each request does not need a search of all variables.
class WantedRegisters
{
public:
    explicit WantedRegisters(const Link &link);

    /// Returns a mark for each register of the range: true if a variable of the station reads it.
    std::vector<bool> marksIn(int station, const RegisterSpan &range) const;

private:
    struct Run {
        int first;
        int last;
    };
    using Place = std::pair<int, int>; // station, area

    std::map<Place, std::vector<Run>> m_runs; // in ascending order, without overlaps
};

} // namespace velko
