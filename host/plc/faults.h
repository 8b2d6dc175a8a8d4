// Faults of a simulated station: their names, numbers and help lines. What a fault does to a
// response is in fault_effects.cpp.
#pragma once

#include <string>
#include <vector>

namespace velko
{

struct Fault {
    enum Kind { NONE, SILENT, LATE, CUT, FLIP, JUNK, EXCEPTION, FOREIGN, STUTTER };

    Kind kind = NONE;
    int number = 0; ///< meaning, unit and range depend on the kind; 0 if it has no number
    int every = 1;  ///< affects only every n-th request to the station; at least 1
};

struct StationFault {
    int station = 1; ///< 1 to 247
    Fault fault;
};

/// Parses "STATION:FAULT" or "STATION:FAULT=N", either with "/EVERY" appended or not: "2:silent",
/// "1:late=300", "1:exception=2/10", "2:none". Throws std::invalid_argument with the reason.
StationFault parseFault(const std::string &text);

struct FaultHelp {
    std::string usage;  ///< "late=N"
    std::string effect; ///< "response N ms late (0 to 60000 ms, default: 300 ms)"
};

/// Describes every fault, in the order of the help text.
std::vector<FaultHelp> faultHelp();

} // namespace velko
