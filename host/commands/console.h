// Input of a running program: signals, and standard input.
#pragma once

#include "host/commands/signals.h"

#include <string>
#include <vector>

namespace velko
{

class Console
{
public:
    enum Stops {
        STOPS_PASS, ///< Ctrl-Z stops the process at once, wherever its threads are
        STOPS_WAIT  ///< Ctrl-Z is reported, and stop() stops the process
    };

    struct Input {
        bool isEnd = false;       ///< SIGINT or SIGTERM, or the terminal was closed
        bool isReload = false;    ///< SIGHUP
        bool isStop = false;      ///< SIGTSTP
        bool isContinued = false; ///< SIGCONT
        std::vector<std::string> lines;
        std::string keys; ///< bytes, instead of lines
    };

    /// Blocks the signals on this thread and on all threads that it starts later. Throws
    /// std::runtime_error.
    explicit Console(Stops stops = STOPS_PASS);

    /// Waits at most `timeout` milliseconds for input. Lines are not empty and have no blanks at
    /// their ends. If `takesKeys`, the input is returned as it comes. The end of standard input is
    /// reported only if it is a terminal. After the first SIGINT or SIGTERM, a second one ends the
    /// program at once.
    Input wait(int timeout, bool takesKeys = false);

    /// Stops the process until it is continued. Does nothing if nobody could continue it: if no
    /// shell has started it.
    static void stop();

private:
    bool isReadable() const;
    void readSignals(Input &input) const;
    void readInput(Input &input, bool takesKeys, bool isHungUp);
    void takeLines(Input &input);

    bool m_isInputOpen;
    bool m_isTerminal;
    Signals m_signals;
    std::string m_rest; // beginning of a line whose end is not read yet
};

} // namespace velko
