// A serial port that cannot be used, or can no longer.
#pragma once

#include <stdexcept>

namespace velko
{

class PortError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace velko
