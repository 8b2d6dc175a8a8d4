// Options whose values are numbers.
#pragma once

#include <CLI/CLI.hpp>

namespace velko
{

/// Accepts what parseNumber accepts.
CLI::Validator numberFrom(int lowest, int highest);

/// Accepts what millisecondsIn accepts; the limits are milliseconds.
CLI::Validator secondsFrom(int lowest, int highest);

} // namespace velko
