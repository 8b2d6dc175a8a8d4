// A serial port cannot be opened, or was disconnected.
#pragma once

#include <stdexcept>

namespace velko
{

/// The message contains the device and the reason.
class PortError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace velko
