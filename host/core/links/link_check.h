// Checks a link that a program has put together. The file of links is checked key by key as it is read.
#pragma once

#include "host/core/links/link.h"

namespace velko
{

/// Throws std::invalid_argument that names the setting or the variable, unless every number is in its
/// range and every variable is one that the driver can read or write.
void checkLink(const Link &link);

} // namespace velko
