// Input of a running program: signals, and lines on standard input.
#pragma once

#include <string>
#include <vector>

namespace velko
{

class Console
{
public:
    struct Input {
        bool isEnd = false;    ///< SIGINT or SIGTERM, or the terminal was closed
        bool isReload = false; ///< SIGHUP
        std::vector<std::string> lines;
    };

    /// Blocks the three signals on this thread and on all threads that it starts later. Throws
    /// std::runtime_error.
    Console();
    ~Console();
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;

    /// Waits at most `milliseconds` for input. Lines are not empty and have no blanks at their
    /// ends. The end of standard input is reported only if it is a terminal. After the first SIGINT
    /// or SIGTERM, a second one ends the program at once.
    Input wait(int milliseconds);

private:
    void readSignals(Input &input) const;
    void readLines(Input &input, bool isHungUp);

    bool m_isInputOpen;
    bool m_isTerminal;
    int m_signals;
    std::string m_rest; // beginning of a line whose end is not read yet
};

} // namespace velko
