// How one serial line is run.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace velko
{

/// Who drives the direction of an RS-485 transceiver: the adapter itself, or the kernel with RTS.
enum class Rs485 { OFF, RTS_ON_SEND, RTS_AFTER_SEND };

struct LineSettings {
    std::vector<std::string> devices; ///< names or patterns; the first that is there is opened
    int baudRate = 19200;
    char parity = 'E';      ///< N, E or O
    int stopBits = 1;       ///< 1 or 2
    int replyTimeout = 500; ///< milliseconds from the request's last byte to the answer's first
    int byteTimeout = 50;   ///< milliseconds between two bytes; USB adapters batch them every 16 ms
    std::optional<int> guardTime; ///< milliseconds of rest after a time-out; else replyTimeout
    /// Microseconds of silence before a request, where 3.5 characters are less.
    int silenceFloor = 0;
    Rs485 rs485 = Rs485::OFF;
    bool echo = false; ///< the adapter returns what is sent

    bool operator==(const LineSettings &other) const;
};

} // namespace velko
