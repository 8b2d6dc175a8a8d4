// Loads a separate copy of the driver: one copy drives one line, and the loader loads a file only
// once.
#pragma once

#include "host/core/loading/driver_library.h"

#include <memory>
#include <string>

namespace velko
{

/// Copies the file to the system's temporary folder, loads the copy and removes it.
/// Never returns null. Throws std::runtime_error with the reason.
std::unique_ptr<DriverLibrary> loadDriverCopy(const std::string &path);

} // namespace velko
