// Tables of values and stations, and the summary with which `poll` ends.
#pragma once

#include "host/core/session/snapshot.h"

#include <cstddef>
#include <string>
#include <vector>

namespace velko
{

/// Returns the lines of the table of values. `width` as in TextTable.
std::vector<std::string> valueTable(const Snapshot &snapshot, size_t width);

/// Returns the name of each link and a table of its stations, with response times in milliseconds.
/// The column for collisions is shown only if there was one. Exceptions follow with their names.
std::vector<std::string> linkTables(const Snapshot &snapshot, size_t width);

/// Returns both tables, then a sentence for each station and one for the values.
std::vector<std::string> summaryOf(const Snapshot &snapshot);

} // namespace velko
