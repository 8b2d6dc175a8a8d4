// The file that says which links there are and which variables: TOML.
#pragma once

#include "host/core/links/file_error.h"
#include "host/core/links/link.h"

namespace velko
{

/// At least one link, each with at least one variable. Throws FileError.
std::vector<Link> readLinkFile(const std::string &path);

} // namespace velko
