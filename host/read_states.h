// Which registers were read, and why the others were not: the store alone cannot tell a 0 that was
// read from one that never was.
#pragma once

#include "host/variable.h"

#include <map>
#include <string>
#include <utility>

class ReadStates
{
public:
    /// Notes what became of a read request. `refusal` is empty when it was answered well.
    void note(const RW_VAR &request, const std::string &refusal);

    /// Empty when every register of the span was read; else why the first one was not.
    std::string refusalOf(const RegisterSpan &span) const;

private:
    // (area, register) -> empty once it was read, else the latest refusal.
    std::map<std::pair<int, int>, std::string> m_refusals;
};
