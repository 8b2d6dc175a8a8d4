// When each register was last read, and why the latest attempt failed. The store cannot tell a 0 that
// was read from a register that was never read.
#pragma once

#include "host/core/events/verdict.h"
#include "host/core/line/line_times.h"
#include "host/core/variables/variable.h"

#include <map>
#include <optional>
#include <tuple>

namespace velko
{

struct RegisterState {
    std::optional<Clock::time_point> lastGood;
    Verdict lastAttempt; ///< GOOD if it succeeded, NOT_SENT if none was made
};

class RegisterStates
{
public:
    void good(int station, const RegisterSpan &span);
    void failed(int station, const RegisterSpan &span, const Verdict &verdict);

    /// The worst of the variable's registers: one that was never read, otherwise one whose latest
    /// attempt failed, otherwise the one that was read longest ago.
    RegisterState stateOf(const Variable &variable) const;

private:
    using Key = std::tuple<int, int, int>; // station, area, register

    std::map<Key, RegisterState> m_states;
};

} // namespace velko
