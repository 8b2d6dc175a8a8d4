#include "host/commands/station_list.h"

#include "host/core/sizes/limits.h"
#include "host/core/text/numbers.h"

#include <algorithm>
#include <sstream>

namespace velko
{

namespace
{

int stationIn(const std::string &text)
{
    return parseNumber(text, LOWEST_STATION, HIGHEST_STATION);
}

} // namespace

std::vector<int> parseStations(const std::string &text)
{
    std::vector<int> stations;
    std::istringstream items(text + ',');
    for (std::string item; std::getline(items, item, ',');) {
        const size_t colon = item.find(':');
        const int one = stationIn(item.substr(0, colon));
        const int other = colon == std::string::npos ? one : stationIn(item.substr(colon + 1));
        for (int station = std::min(one, other); station <= std::max(one, other); ++station)
            if (std::find(stations.begin(), stations.end(), station) == stations.end())
                stations.push_back(station);
    }
    return stations;
}

} // namespace velko
