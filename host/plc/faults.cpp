#include "host/plc/faults.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace velko
{

namespace
{

// What a fault's number may be, and what it is when it is left out. A fault without a number has
// 0 in all three.
struct FaultKind {
    const char *name;
    Fault::Kind kind;
    int lowest;
    int highest;
    int standard;
};

constexpr std::array<FaultKind, 9> FAULT_KINDS = {{{"none", Fault::NONE, 0, 0, 0},
                                                   {"silent", Fault::SILENT, 0, 0, 0},
                                                   {"late", Fault::LATE, 0, 60000, 300},
                                                   {"cut", Fault::CUT, 1, 255, 3},
                                                   {"flip", Fault::FLIP, 0, 0, 0},
                                                   {"junk", Fault::JUNK, 1, 64, 3},
                                                   {"exception", Fault::EXCEPTION, 1, 255, 2},
                                                   {"foreign", Fault::FOREIGN, 0, 0, 0},
                                                   {"stutter", Fault::STUTTER, 0, 60000, 16}}};

const int LAST_STATION = 247;
const int LONGEST_INTERVAL = 1000000;

[[noreturn]] void refuse(const std::string &why)
{
    throw std::invalid_argument(why);
}

std::string quoted(const std::string &text)
{
    return '"' + text + '"';
}

// No leading zeros: "010" is not to be taken for octal.
int numberIn(const std::string &text, const std::string &what, int lowest, int highest)
{
    const bool isDecimal = !text.empty() && text.size() <= 9
                           && text.find_first_not_of("0123456789") == std::string::npos
                           && (text == "0" || text[0] != '0');
    const int number = isDecimal ? std::stoi(text) : -1;
    if (number < lowest || number > highest)
        refuse(what + " is " + quoted(text) + ", but must be a number from "
               + std::to_string(lowest) + " to " + std::to_string(highest)
               + " without leading zeros");
    return number;
}

const FaultKind &kindNamed(const std::string &name)
{
    const auto *const found =
        std::find_if(FAULT_KINDS.begin(), FAULT_KINDS.end(),
                     [&](const FaultKind &kind) { return name == kind.name; });
    if (found != FAULT_KINDS.end())
        return *found;
    std::string names;
    for (const FaultKind &kind : FAULT_KINDS)
        names += (names.empty() ? "" : ", ") + std::string(kind.name);
    refuse("there is no fault " + quoted(name) + ", only " + names);
}

// Cuts the text at the first such character and returns what is behind it. Neither part has the
// character itself; `found` tells an empty part behind it from none.
std::string cutAt(std::string &text, char separator, bool &found)
{
    const size_t position = text.find(separator);
    found = position != std::string::npos;
    if (!found)
        return std::string();
    std::string behind = text.substr(position + 1);
    text.erase(position);
    return behind;
}

// "FAULT", "FAULT=NUMBER", each with "/EVERY" or not.
Fault faultIn(std::string text)
{
    bool hasEvery = false;
    bool hasNumber = false;
    const std::string every = cutAt(text, '/', hasEvery);
    const std::string number = cutAt(text, '=', hasNumber);
    const FaultKind &kind = kindNamed(text);
    if (hasNumber && kind.highest == 0)
        refuse(quoted(text) + " takes no number");
    Fault fault;
    fault.kind = kind.kind;
    fault.number =
        hasNumber ? numberIn(number, "the number of " + quoted(text), kind.lowest, kind.highest)
                  : kind.standard;
    if (hasEvery)
        fault.every = numberIn(every, "what follows the /", 1, LONGEST_INTERVAL);
    return fault;
}

} // namespace

StationFault parseFault(const std::string &text)
{
    try {
        std::string station = text;
        bool hasFault = false;
        const std::string fault = cutAt(station, ':', hasFault);
        if (!hasFault)
            refuse("it must be STATION:FAULT, for example 2:silent");
        return {numberIn(station, "the station", 1, LAST_STATION), faultIn(fault)};
    } catch (const std::invalid_argument &error) {
        throw std::invalid_argument("fault " + quoted(text) + ": " + error.what());
    }
}

} // namespace velko
