// Reads the file of links and variables, which is TOML.
#pragma once

#include "host/core/links/link.h"

#include <string>
#include <vector>

namespace velko
{

/// Returns at least one link, each with at least one variable. Throws FileError.
std::vector<Link> readLinkFile(const std::string &path);

} // namespace velko
