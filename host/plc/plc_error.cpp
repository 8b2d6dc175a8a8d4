#include "host/plc/plc_error.h"

#include <modbus.h>

#include <cerrno>
#include <stdexcept>

namespace velko
{

void failPlc(const std::string &what)
{
    throw std::runtime_error("simulated PLC: " + what);
}

void failPlcWithErrno(const std::string &what)
{
    failPlc(what + ": " + modbus_strerror(errno));
}

} // namespace velko
