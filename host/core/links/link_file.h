// The file of links and variables, in TOML.
#pragma once

#include "host/core/links/link.h"

#include <string>
#include <vector>

namespace velko
{

/// Reads and checks the file. Returns at least one link, each with at least one variable. Throws
/// FileError.
std::vector<Link> readLinkFile(const std::string &path);

} // namespace velko
