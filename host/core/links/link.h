// A link: one serial line, its settings and its variables.
#pragma once

#include "host/core/line/line_settings.h"
#include "host/core/variables/variable.h"

#include <string>
#include <vector>

namespace velko
{

struct Link {
    std::string name;
    LineSettings line;
    int maxRegs = 100;           ///< registers per request, at most
    int retries = 2;             ///< before a request is given up
    bool ownFailuresOnly = true; ///< failures of other requests do not count as retries
    int queueAgain = 0;          ///< times that a given-up write is queued again before it fails
    int staleAfter = 5000;       ///< milliseconds after which a value is stale
    std::vector<Variable> variables;

    bool isWritten() const;
    /// Station numbers, ascending, each once.
    std::vector<int> stations() const;
};

} // namespace velko
