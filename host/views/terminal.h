// The terminal while a table fills it: another screen, and keys that arrive one by one.
#pragma once

#include <cstddef>

namespace velko
{

/// At most one object is in use at a time, on one thread.
class Terminal
{
public:
    Terminal();
    /// As leave().
    ~Terminal();
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    /// True if standard input is a terminal, whose keys the program takes.
    bool hasKeys() const { return m_hasKeys; }
    /// False while the program runs in the background, where the terminal is not its own.
    bool isForeground() const;

    /// Shows the other screen, and takes keys one by one without echo. Ctrl-C and Ctrl-Z remain
    /// signals. If such a signal, or an error of the program, ends it from now on, the terminal is
    /// restored.
    void enter();
    /// Restores the screen and the mode that enter() has found. Keys that nobody has taken are
    /// dropped: a shell must not get an unfinished line.
    void leave();
    /// True between enter() and leave().
    bool isEntered() const;

    struct Size {
        size_t rows = 24;
        size_t columns = 80;
        bool operator==(const Size &other) const
        {
            return rows == other.rows && columns == other.columns;
        }
    };
    /// Returns 24 x 80 for a terminal that does not know its size.
    static Size size();

private:
    bool m_hasKeys;
};

} // namespace velko
