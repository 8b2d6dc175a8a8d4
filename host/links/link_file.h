// The file that says which links there are and which variables: TOML.
#pragma once

#include "host/links/link.h"

#include <stdexcept>

/// "press.toml:12:5: what is wrong"
class FileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// At least one link, each with at least one variable. Throws FileError.
std::vector<Link> readLinkFile(const std::string &path);
