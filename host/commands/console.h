// What the user does to a running program: signals, and lines on standard input.
#pragma once

#include <string>
#include <vector>

namespace velko
{

class Console
{
public:
    struct Input {
        bool isEnd = false;    ///< SIGINT or SIGTERM, or the terminal went
        bool isReload = false; ///< SIGHUP
        std::vector<std::string> lines;
    };

    /// Takes the three signals over, of this thread and all that are started later. Throws
    /// std::runtime_error.
    Console();
    ~Console();
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;

    /// What comes within `milliseconds`; lines without blanks around them, none empty. The end of
    /// standard input ends nothing, unless that is a terminal. After the first SIGINT or SIGTERM a
    /// second one ends the program at once.
    Input wait(int milliseconds);

private:
    void readSignals(Input &input) const;
    void readLines(Input &input, bool isHungUp);

    bool m_isInputOpen;
    bool m_isTerminal;
    int m_signals;
    std::string m_rest; // of a line whose end has not come yet
};

} // namespace velko
