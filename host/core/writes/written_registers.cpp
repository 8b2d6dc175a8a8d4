#include "host/core/writes/written_registers.h"

#include "host/core/variables/kinds.h"

#include <iterator>

namespace velko
{

namespace
{

int firstOnLine(const Variable &variable)
{
    const RegisterSpan span = registersOf(variable);
    return span.first + wireOffset(span.area);
}

int lastOnLine(const Variable &variable)
{
    const RegisterSpan span = registersOf(variable);
    return span.last + wireOffset(span.area);
}

} // namespace

// The ranges do not overlap, so only the one that begins last before the variable's end matters.
bool WrittenRegisters::touch(const Variable &variable) const
{
    const auto next = m_lastOf.upper_bound({variable.station, lastOnLine(variable)});
    if (next == m_lastOf.begin())
        return false;
    const auto range = std::prev(next);
    return range->first.first == variable.station && range->second >= firstOnLine(variable);
}

void WrittenRegisters::add(const Variable &variable)
{
    m_lastOf[{variable.station, firstOnLine(variable)}] = lastOnLine(variable);
}

void WrittenRegisters::remove(const Variable &variable)
{
    m_lastOf.erase({variable.station, firstOnLine(variable)});
}

} // namespace velko
