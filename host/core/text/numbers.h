// Numbers in texts. The result does not depend on the locale, as it does with functions of the C
// library.
#pragma once

#include <string>

namespace velko
{

/// True for "007" and "-007.5", false for "0.5" and "10".
bool hasLeadingZeros(const std::string &number);

/// True if the text consists of one or more of the digits 0 to 9.
bool isDigits(const std::string &text);

/// Parses a whole number from `lowest` to `highest`. The text consists of decimal digits without
/// leading zeros, because some programs read "010" as an octal number. A "-" before the digits is
/// accepted only if `lowest` is negative. Throws std::invalid_argument for any other text. `what`
/// begins the message: `count "0" is out of range: 1 to 1024`.
int parseNumber(const std::string &text, int lowest, int highest, const std::string &what = "");

/// As parseNumber, for larger numbers.
long long parseLongNumber(const std::string &text, long long lowest, long long highest,
                          const std::string &what = "");

/// Returns, for example, "1 to 1024".
std::string rangeText(long long lowest, long long highest);

/// Parses seconds with at most three digits after the point, for example "5", "2.5" or ".5".
/// Returns milliseconds. Throws std::invalid_argument for any other text and for more than
/// LONGEST_RUN.
int millisecondsIn(const std::string &text);

/// Returns `number` / 1000 with `digits` digits after the point, 1 or 3, rounded: "12.3" or
/// "12.345" for 12345. `number` is not negative.
std::string thousandths(long long number, int digits = 1);

} // namespace velko
