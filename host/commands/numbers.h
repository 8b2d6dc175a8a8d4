// Numbers on the command line, whatever the user's language: Qt sets the locale, and the language's
// own functions then want a comma in some countries.
#pragma once

#include <CLI/CLI.hpp>

namespace velko
{

/// Accepts decimal numbers without leading zeros: "010" is not to be taken for octal.
CLI::Validator numberFrom(int lowest, int highest);

/// Accepts seconds with up to three digits behind a point; the bounds are milliseconds.
CLI::Validator secondsFrom(int lowest, int highest);

/// Of "5" or "2.5": milliseconds. Throws std::invalid_argument for what is no such number, or more
/// than 999,999.999 seconds.
int millisecondsIn(const std::string &seconds);

} // namespace velko
