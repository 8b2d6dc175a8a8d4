// A copy of the driver's own: one copy drives one line, and the loader gives the same file only once.
#pragma once

#include "host/core/loading/driver_library.h"

#include <memory>

namespace velko
{

/// Copies the file to the system's folder for temporary files, loads the copy and removes it again.
/// Throws std::runtime_error.
std::unique_ptr<DriverLibrary> loadDriverCopy(const std::string &path);

} // namespace velko
