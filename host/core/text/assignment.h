// A typed write: NAME=VALUE.
#pragma once

#include <optional>
#include <string>

namespace velko
{

struct Assignment {
    std::string name;
    std::string value;
};

/// Splits the text at its first "=". Spaces and tabs at the ends of name and value do not belong to
/// them. Returns nothing if there is no "=".
std::optional<Assignment> parseAssignment(const std::string &text);

/// Returns the text without spaces, tabs and carriage returns at its ends.
std::string trimmed(const std::string &text);

} // namespace velko
