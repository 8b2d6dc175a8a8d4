// Lists of stations on the command line.
#pragma once

#include <string>
#include <vector>

namespace velko
{

/// Parses "1,3,36:40" as mbpoll does: numbers and ranges, whose ends may be in either order.
/// Returns the stations in the order of the text, each one once. Throws std::invalid_argument.
std::vector<int> parseStations(const std::string &text);

} // namespace velko
