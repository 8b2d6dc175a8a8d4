// An error in a file of links and variables.
#pragma once

#include <stdexcept>

namespace velko
{

/// The message begins with the place: "press.toml:12:5: ...".
class FileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace velko
