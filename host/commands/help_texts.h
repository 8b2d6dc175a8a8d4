// Help texts that several sub-commands share.
#pragma once

#include <string>

namespace velko
{

/// Describes how variables are written on the command line.
std::string variablesHelp();

std::string exitStatusHelp();

} // namespace velko
