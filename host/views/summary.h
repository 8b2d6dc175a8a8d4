// Tables of values and stations, and the summary with which `poll` ends.
#pragma once

#include "host/core/session/snapshot.h"

#include <cstddef>
#include <string>
#include <vector>

namespace velko
{

/// The values under their headings. `width` as in TextTable.
std::vector<std::string> valueTable(const Snapshot &snapshot, size_t width);

/// The name of each link and a table of its stations, with response times in milliseconds and a
/// column for collisions only if there was one. Exceptions follow with their names.
std::vector<std::string> linkTables(const Snapshot &snapshot, size_t width);

/// Both tables, and sentences on each station and on the values.
std::vector<std::string> summaryOf(const Snapshot &snapshot);

} // namespace velko
