// A file of links and variables that is refused.
#pragma once

#include <stdexcept>

namespace velko
{

/// "press.toml:12:5: what is wrong"
class FileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace velko
