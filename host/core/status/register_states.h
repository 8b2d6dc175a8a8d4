// When each register was last read, and why the latest attempt failed. The driver's store returns 0
// for a register that was never read.
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
    std::optional<Clock::time_point> lastGood; ///< no value: never read
    Verdict lastAttempt;                       ///< GOOD if it succeeded, NOT_SENT if none was made
};

/// Has no lock: its owner guards it.
class RegisterStates
{
public:
    /// Notes that the registers were read now.
    void good(int station, const RegisterSpan &span);
    /// Notes that an attempt to read the registers failed.
    void failed(int station, const RegisterSpan &span, const Verdict &verdict);

    /// A write of the registers is queued.
    void writeBegins(int station, const RegisterSpan &span);
    /// The result of a write of the registers is known.
    void writeEnds(int station, const RegisterSpan &span);
    /// True if a write of one of the variable's registers is queued.
    bool isWriting(const Variable &variable) const;

    /// Returns the worst state of the variable's registers: that of a register that was never read,
    /// otherwise of one whose latest attempt failed, otherwise of the one that was read longest
    /// ago.
    RegisterState stateOf(const Variable &variable) const;

private:
    using Key = std::tuple<int, int, int>; // station, area, register

    std::map<Key, RegisterState> m_states;
    std::map<Key, int> m_writes; // queued writes of a register
};

} // namespace velko
