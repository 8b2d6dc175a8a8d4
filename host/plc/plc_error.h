// Errors at the start of a simulated PLC.
#pragma once

#include <string>

namespace velko
{

/// Throws std::runtime_error: "simulated PLC: " and `what`.
[[noreturn]] void failPlc(const std::string &what);

/// As failPlc, with the meaning of errno appended, which may be a code of libmodbus.
[[noreturn]] void failPlcWithErrno(const std::string &what);

} // namespace velko
