#include "host/core/text/numbers.h"

#include "host/core/sizes/limits.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace velko
{

bool hasLeadingZeros(const std::string &number)
{
    const size_t first = number.empty() || number[0] != '-' ? 0 : 1;
    return number.size() > first + 1 && number[first] == '0'
           && isDigits(number.substr(first + 1, 1));
}

bool isDigits(const std::string &text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

int parseNumber(const std::string &text, int lowest, int highest, const std::string &what)
{
    return static_cast<int>(parseLongNumber(text, lowest, highest, what));
}

long long parseLongNumber(const std::string &text, long long lowest, long long highest,
                          const std::string &what)
{
    const std::string subject = (what.empty() ? "" : what + " ") + "\"" + text + "\"";
    const bool isNegative = lowest < 0 && !text.empty() && text[0] == '-';
    const std::string digits = text.substr(isNegative ? 1 : 0);
    if (!isDigits(digits))
        throw std::invalid_argument(subject + " is not a whole number from "
                                    + rangeText(lowest, highest));
    if (hasLeadingZeros(digits))
        throw std::invalid_argument(subject + ": write the number without leading zeros");
    long long number = 0;
    const std::errc error = std::from_chars(text.data(), text.data() + text.size(), number).ec;
    if (error != std::errc() || number < lowest || number > highest)
        throw std::invalid_argument(subject + " is out of range: " + rangeText(lowest, highest));
    return number;
}

std::string rangeText(long long lowest, long long highest)
{
    return std::to_string(lowest) + " to " + std::to_string(highest);
}

int millisecondsIn(const std::string &text)
{
    const size_t point = std::min(text.find('.'), text.size());
    const std::string whole = text.substr(0, point);
    const bool isWhole = point == text.size();
    const std::string fraction = isWhole ? "0" : text.substr(point + 1);
    const bool isLeadingPoint = whole.empty() && !isWhole; // ".5", as other programs accept it
    if ((!isDigits(whole) && !isLeadingPoint) || !isDigits(fraction) || fraction.size() > 3)
        throw std::invalid_argument("\"" + text
                                    + "\" is not a number of seconds, for example 5, 2.5 or .5");
    return parseNumber(isLeadingPoint ? "0" : whole, 0, LONGEST_RUN / 1000, "seconds") * 1000
           + std::stoi((fraction + "00").substr(0, 3));
}

std::string thousandths(long long number, int digits)
{
    const long long unit = digits == 1 ? 100 : 1;
    const long long rounded = (number + unit / 2) / unit;
    const long long whole = 1000 / unit;
    return std::to_string(rounded / whole) + "."
           + std::to_string(whole + rounded % whole).substr(1);
}

} // namespace velko
