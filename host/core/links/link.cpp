#include "host/core/links/link.h"

#include <algorithm>
#include <set>

namespace velko
{

namespace
{

int settingOf(const Link &link, int station, std::optional<int> StationSettings::*setting,
              int otherwise)
{
    const auto place = link.stationSettings.find(station);
    return place == link.stationSettings.end() ? otherwise
                                               : (place->second.*setting).value_or(otherwise);
}

} // namespace

int Link::responseTimeoutOf(int station) const
{
    return settingOf(*this, station, &StationSettings::responseTimeout, line.responseTimeout);
}

int Link::retriesOf(int station) const
{
    return settingOf(*this, station, &StationSettings::retries, retries);
}

int Link::maxRegsOf(int station) const
{
    return settingOf(*this, station, &StationSettings::maxRegs, maxRegs);
}

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
