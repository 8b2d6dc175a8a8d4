#include "host/commands/number_options.h"

#include "host/core/text/numbers.h"

#include <stdexcept>

namespace velko
{

namespace
{

std::string checkNumber(const std::string &text, int lowest, int highest)
{
    try {
        parseNumber(text, lowest, highest);
        return std::string();
    } catch (const std::invalid_argument &error) {
        return error.what();
    }
}

std::string checkSeconds(const std::string &text, int lowest, int highest)
{
    try {
        const int time = millisecondsIn(text);
        if (time >= lowest && time <= highest)
            return std::string();
        return "\"" + text + "\" is out of range: " + thousandths(lowest, 3) + " to "
               + thousandths(highest, 3) + " seconds";
    } catch (const std::invalid_argument &error) {
        return error.what();
    }
}

} // namespace

CLI::Validator numberFrom(int lowest, int highest)
{
    return {[=](std::string &text) { return checkNumber(text, lowest, highest); },
            std::to_string(lowest) + ".." + std::to_string(highest)};
}

CLI::Validator secondsFrom(int lowest, int highest)
{
    return {[=](std::string &text) { return checkSeconds(text, lowest, highest); },
            thousandths(lowest, 3) + ".." + thousandths(highest, 3)};
}

} // namespace velko
