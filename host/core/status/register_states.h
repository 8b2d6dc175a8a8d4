// When each register was read, and why it could not be: the store alone cannot tell a 0 that was read
// from one that never was.
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
    Verdict refusal; ///< of the latest attempt; GOOD when that was good
};

class RegisterStates
{
public:
    void good(int station, const RegisterSpan &span);
    void refused(int station, const RegisterSpan &span, const Verdict &verdict);

    /// The worst of the variable's registers: one that was never read, else one whose latest attempt
    /// failed, else the one that was read longest ago.
    RegisterState stateOf(const Variable &variable) const;

private:
    using Key = std::tuple<int, int, int>; // station, area, register

    std::map<Key, RegisterState> m_states;
};

} // namespace velko
