// What a simulated station does wrong.
#pragma once

#include <string>

namespace velko
{

struct Fault {
    enum Kind {
        NONE,
        SILENT,    ///< no reply; the request is not carried out either
        LATE,      ///< the reply begins `number` milliseconds late
        CUT,       ///< only the first `number` bytes of the reply
        FLIP,      ///< one bit of the reply's third byte from the end is flipped: the CRC is wrong
        JUNK,      ///< `number` bytes of noise right before the reply
        EXCEPTION, ///< an exception reply of code `number`; the request is not carried out
        FOREIGN,   ///< before the reply a good frame of another station, with other values in it
        STUTTER    ///< a pause of `number` milliseconds in the middle of the reply
    };

    Kind kind = NONE;
    int number = 0;
    int every = 1; ///< only each n-th request to the station, from 1 up
};

struct StationFault {
    int station = 1;
    Fault fault;
};

/// "STATION:FAULT", "STATION:FAULT=NUMBER", each with "/EVERY" behind it or not: "2:silent",
/// "1:late=300", "1:exception=2/10", "2:none". Throws std::invalid_argument that says what is wrong.
StationFault parseFault(const std::string &text);

} // namespace velko
