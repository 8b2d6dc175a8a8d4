// The registers that queued writes change.
#pragma once

#include "host/core/variables/variable.h"

#include <map>
#include <utility>

namespace velko
{

/// Registers as the slave counts them: two areas may share them. Used by one thread.
class WrittenRegisters
{
public:
    /// True if a register of the variable is among them.
    bool touch(const Variable &variable) const;

    /// Adds the registers of a variable. None of them is among them.
    void add(const Variable &variable);
    void remove(const Variable &variable);

private:
    using Place = std::pair<int, int>; // station, register address on the line

    std::map<Place, int> m_lastOf; // last register of each range, by the first one
};

} // namespace velko
