// A link: one serial line, how it is run, and the variables that lie behind it.
#pragma once

#include "host/core/line/line_settings.h"
#include "host/core/variables/variable.h"

namespace velko
{

struct Link {
    std::string name;
    LineSettings line;
    int maxRegs = 100;           ///< registers per request at the most
    int retries = 2;             ///< failed exchanges tolerated before a request is given up
    bool ownFailuresOnly = true; ///< a request is given up for its own failures, not for others'
    int offerAgain = 0;          ///< how often a given-up write is queued anew before it has failed
    int staleAfter = 5000;       ///< milliseconds after which a value is no longer called good
    std::vector<Variable> variables;

    bool isWritten() const;
    /// Ascending, each once.
    std::vector<int> stations() const;
};

} // namespace velko
