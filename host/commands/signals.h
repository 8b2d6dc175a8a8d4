// Signals that wait until the program takes them.
#pragma once

#include <vector>

namespace velko
{

class Signals
{
public:
    /// Blocks the signals on this thread and on all threads that it starts later. Throws
    /// std::runtime_error.
    explicit Signals(const std::vector<int> &numbers);
    ~Signals();
    Signals(const Signals &) = delete;
    Signals &operator=(const Signals &) = delete;

    /// Readable when a signal waits.
    int descriptor() const { return m_descriptor; }

    /// Returns the signals that wait.
    std::vector<int> take() const;

    /// Lets a signal have its usual effect, for example to end or to stop the program.
    static void release(int number);
    /// Blocks the signal again.
    static void hold(int number);

private:
    int m_descriptor;
};

} // namespace velko
