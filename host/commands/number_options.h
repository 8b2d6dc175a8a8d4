// Options whose values are numbers.
#pragma once

#include <CLI/CLI.hpp>

namespace velko
{

/// Returns a check that accepts what parseNumber accepts.
CLI::Validator numberFrom(int lowest, int highest);

/// Returns a check that accepts what millisecondsIn accepts. The limits are milliseconds.
CLI::Validator secondsFrom(int lowest, int highest);

} // namespace velko
