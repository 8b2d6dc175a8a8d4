// Limits of the settings, on the command line and in a file.
#pragma once

namespace velko
{

// --- The line ---

const int LOWEST_BAUD = 300;
const int HIGHEST_BAUD = 4000000;
const int HIGHEST_STOP_BITS = 2;

// --- Stations, registers and values ---

const int BROADCAST_STATION = 0; // no slave responds
const int LOWEST_STATION = 1;
const int HIGHEST_STATION = 247;
const int HIGHEST_REGISTER = 65535; // register address on the line
const int HIGHEST_COUNT = 1024;     // values of a variable, or characters of a text

// --- Requests ---

const int LOWEST_MAX_REGS = 2;
const int HIGHEST_MAX_REGS_WRITING =
    122; // function 16 carries 123; even, so that no double word is cut
const int HIGHEST_MAX_REGS_READING = 125;

/// An odd number of registers per request would cut a double word in two.
inline bool isWholeDoubleWords(int maxRegs)
{
    return maxRegs % 2 == 0;
}

const int HIGHEST_RETRIES = 100;
const int HIGHEST_QUEUE_AGAIN = 100; // of one write, after it was given up

// --- Times, in milliseconds ---

const int LONGEST_TIME = 60000;   // of timeouts and the guard time
const int LONGEST_SILENCE = 1000; // of the frame gap
const int LONGEST_STALE_AFTER = 24 * 60 * 60 * 1000;
const int SHORTEST_HEARTBEAT = 100;
const int LONGEST_HEARTBEAT = 24 * 60 * 60 * 1000;
const int SHORTEST_INTERVAL = 10; // between two reads of one variable
const int LONGEST_INTERVAL = 24 * 60 * 60 * 1000;
const int SHORTEST_RUN = 100;
const int LONGEST_RUN = 999999999; // 9 digits of milliseconds, more than eleven days

// --- Runs ---

const int HIGHEST_CYCLES = 1000000;

} // namespace velko
