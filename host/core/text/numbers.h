// Numbers in texts, the same in every language: the functions of Qt and of the C library want a
// comma in some countries.
#pragma once

#include <string>

namespace velko
{

/// One or more of the digits 0 to 9, and nothing else.
bool isDigits(const std::string &text);

/// Reads a whole number from `lowest` to `highest`: decimal digits without leading zeros ("010" is
/// octal for some readers), after a "-" only where `lowest` is negative. Throws
/// std::invalid_argument for any other text. `what` begins the message: `count "0" is out of
/// range: 1 to 1024`.
int parseNumber(const std::string &text, int lowest, int highest, const std::string &what = "");

/// The same for larger numbers.
long long parseLongNumber(const std::string &text, long long lowest, long long highest,
                          const std::string &what = "");

/// Reads seconds with at most three digits after the point, for example "5" or "2.5", and returns
/// milliseconds. Throws std::invalid_argument for any other text and for more than LONGEST_RUN.
int millisecondsIn(const std::string &text);

/// "12.3" for 12345 with one digit after the point, "12.345" with three. Not for negative numbers.
std::string thousandths(long long number, int digits = 1);

} // namespace velko
