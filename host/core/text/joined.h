// Lists in texts.
#pragma once

#include <string>
#include <vector>

namespace velko
{

/// "a, b, c"
inline std::string joined(const std::vector<std::string> &names)
{
    std::string text;
    for (const std::string &name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

} // namespace velko
