#include "host/core/text/assignment.h"

namespace velko
{

std::optional<Assignment> parseAssignment(const std::string &text)
{
    const size_t sign = text.find('=');
    if (sign == std::string::npos)
        return std::nullopt;
    return Assignment{trimmed(text.substr(0, sign)), trimmed(text.substr(sign + 1))};
}

std::string trimmed(const std::string &text)
{
    const char *const blanks = " \t\r";
    const size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string::npos)
        return std::string();
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

} // namespace velko
