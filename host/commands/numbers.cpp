#include "host/commands/numbers.h"

#include "host/views/text_table.h"

#include <stdexcept>

namespace velko
{

namespace
{

const size_t MOST_DIGITS = 6; // of whole seconds: eleven days

bool isDigits(const std::string &text, size_t most)
{
    return !text.empty() && text.size() <= most
           && text.find_first_not_of("0123456789") == std::string::npos;
}

std::string checkNumber(const std::string &text, int lowest, int highest)
{
    const bool isDecimal = isDigits(text, 9) && (text == "0" || text[0] != '0');
    if (isDecimal && std::stoi(text) >= lowest && std::stoi(text) <= highest)
        return std::string();
    return "\"" + text + "\" is not a number from " + std::to_string(lowest) + " to "
           + std::to_string(highest) + " without leading zeros";
}

std::string checkSeconds(const std::string &text, int lowest, int highest)
{
    try {
        const int time = millisecondsIn(text);
        if (time < lowest || time > highest)
            return "\"" + text + "\" is not from " + thousandths(lowest, 3) + " to "
                   + thousandths(highest, 3) + " seconds";
        return std::string();
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

int millisecondsIn(const std::string &seconds)
{
    const size_t point = std::min(seconds.find('.'), seconds.size());
    const std::string whole = seconds.substr(0, point);
    const std::string fraction = point < seconds.size() ? seconds.substr(point + 1) : "0";
    if (!isDigits(whole, MOST_DIGITS) || !isDigits(fraction, 3))
        throw std::invalid_argument("\"" + seconds
                                    + "\" is no number of seconds, such as 5 or 2.5, from 0 to "
                                      "999999.999");
    return std::stoi(whole) * 1000 + std::stoi((fraction + "00").substr(0, 3));
}

} // namespace velko
