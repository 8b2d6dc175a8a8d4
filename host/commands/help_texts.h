// Texts that several sub-commands show.
#pragma once

namespace velko
{

extern const char *const VARIABLES_HELP;
extern const char *const EXIT_STATUS_HELP;

} // namespace velko
