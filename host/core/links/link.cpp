#include "host/core/links/link.h"

#include <algorithm>
#include <set>

namespace velko
{

bool Link::isWritten() const
{
    return std::any_of(variables.begin(), variables.end(),
                       [](const Variable &variable) { return variable.isWritten(); });
}

std::vector<int> Link::stations() const
{
    std::set<int> numbers;
    for (const Variable &variable : variables)
        numbers.insert(variable.station);
    return {numbers.begin(), numbers.end()};
}

} // namespace velko
