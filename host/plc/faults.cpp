#include "host/plc/faults.h"

#include "host/core/sizes/limits.h"
#include "host/core/text/joined.h"
#include "host/core/text/numbers.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace velko
{

namespace
{

struct NumberRange {
    int lowest;
    int highest; // 0: the fault has no number
    int standard;
    const char *unit;
};

constexpr NumberRange NO_NUMBER = {0, 0, 0, ""};

// The only description of a fault: parser and help text use it.
struct FaultKind {
    const char *name;
    Fault::Kind kind;
    NumberRange number;
    const char *effect; // N: the number
};

constexpr std::array<FaultKind, 9> FAULT_KINDS = {{
    {"none", Fault::NONE, NO_NUMBER, "no fault"},
    {"silent", Fault::SILENT, NO_NUMBER, "no response; the request is not executed"},
    {"late", Fault::LATE, {0, LONGEST_TIME, 300, " ms"}, "response N ms late"},
    {"cut", Fault::CUT, {1, 255, 3, " bytes"}, "only the first N bytes of the response"},
    {"flip", Fault::FLIP, NO_NUMBER, "response with one wrong bit: the CRC does not match"},
    {"junk", Fault::JUNK, {1, 64, 3, " bytes"}, "N bytes of noise directly before the response"},
    {"exception",
     Fault::EXCEPTION,
     {1, 255, 2, ""},
     "exception response with code N; the request is not executed"},
    {"foreign", Fault::FOREIGN, NO_NUMBER, "valid frame of another station before the response"},
    {"stutter",
     Fault::STUTTER,
     {0, LONGEST_TIME, 16, " ms"},
     "pause of N ms in the middle of the response"},
}};

const int LONGEST_INTERVAL = 1000000; // requests

[[noreturn]] void refuse(const std::string &why)
{
    throw std::invalid_argument(why);
}

std::string quoted(const std::string &text)
{
    return '"' + text + '"';
}

const FaultKind &kindNamed(const std::string &name)
{
    const auto *const found =
        std::find_if(FAULT_KINDS.begin(), FAULT_KINDS.end(),
                     [&](const FaultKind &kind) { return name == kind.name; });
    if (found != FAULT_KINDS.end())
        return *found;
    std::vector<std::string> names;
    names.reserve(FAULT_KINDS.size());
    for (const FaultKind &kind : FAULT_KINDS)
        names.emplace_back(kind.name);
    refuse("unknown fault " + quoted(name) + ". Use one of: " + joined(names));
}

// Cuts the text at the first separator and returns the part after it. Neither part contains the
// separator; `found` distinguishes an empty part from a missing one.
std::string cutAt(std::string &text, char separator, bool &found)
{
    const size_t position = text.find(separator);
    found = position != std::string::npos;
    if (!found)
        return std::string();
    std::string rest = text.substr(position + 1);
    text.erase(position);
    return rest;
}

// Parses "FAULT" or "FAULT=N", either with "/EVERY" or not.
Fault faultIn(std::string text)
{
    bool hasEvery = false;
    bool hasNumber = false;
    const std::string every = cutAt(text, '/', hasEvery);
    const std::string number = cutAt(text, '=', hasNumber);
    const FaultKind &kind = kindNamed(text);
    if (hasNumber && kind.number.highest == 0)
        refuse(quoted(text) + " has no number");
    Fault fault;
    fault.kind = kind.kind;
    fault.number = hasNumber ? parseNumber(number, kind.number.lowest, kind.number.highest,
                                           "number of " + quoted(text))
                             : kind.number.standard;
    if (hasEvery)
        fault.every = parseNumber(every, 1, LONGEST_INTERVAL, "number after the /");
    return fault;
}

// "0 to 60000 ms, default: 300 ms"
std::string rangeOf(const NumberRange &range)
{
    return rangeText(range.lowest, range.highest) + range.unit
           + ", default: " + std::to_string(range.standard) + range.unit;
}

FaultHelp helpOf(const FaultKind &kind)
{
    if (kind.number.highest == 0)
        return {kind.name, kind.effect};
    return {std::string(kind.name) + "=N",
            std::string(kind.effect) + " (" + rangeOf(kind.number) + ")"};
}

} // namespace

StationFault parseFault(const std::string &text)
{
    try {
        std::string station = text;
        bool hasFault = false;
        const std::string fault = cutAt(station, ':', hasFault);
        if (!hasFault)
            refuse("the form is STATION:FAULT, for example 2:silent");
        return {parseNumber(station, LOWEST_STATION, HIGHEST_STATION, "station"), faultIn(fault)};
    } catch (const std::invalid_argument &error) {
        throw std::invalid_argument("fault " + quoted(text) + ": " + error.what());
    }
}

std::vector<FaultHelp> faultHelp()
{
    std::vector<FaultHelp> rows;
    rows.reserve(FAULT_KINDS.size());
    for (const FaultKind &kind : FAULT_KINDS)
        rows.push_back(helpOf(kind));
    return rows;
}

} // namespace velko
