// The settings of one serial line.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace velko
{

/// Direction control of an RS-485 transceiver. OFF: by the adapter; otherwise by the kernel with
/// RTS.
enum class Rs485 { OFF, RTS_ON_SEND, RTS_AFTER_SEND };

struct LineSettings {
    std::vector<std::string> devices; ///< names or patterns; the first one that exists is opened
    int baudRate = 19200;             ///< bits per second
    char parity = 'E';                ///< N, E or O
    int stopBits = 1;                 ///< 1 or 2
    int responseTimeout = 500;        ///< milliseconds
    int interCharacterTimeout = 50;   ///< milliseconds; a USB adapter delivers bytes every 16 ms
    std::optional<int> guardTime;     ///< milliseconds; default: by station
    /// Microseconds. The frame gap is never shorter than 3.5 characters.
    int minFrameGap = 0;
    Rs485 rs485 = Rs485::OFF;
    bool echo = false; ///< the adapter echoes each request

    bool operator==(const LineSettings &other) const;
};

} // namespace velko
