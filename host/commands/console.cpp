#include "host/commands/console.h"

#include "host/core/text/assignment.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

namespace velko
{

namespace
{

const size_t LONGEST_LINE = 10000;

std::vector<int> signalsOf(Console::Stops stops)
{
    std::vector<int> numbers = {SIGINT, SIGTERM, SIGHUP};
    if (stops == Console::STOPS_WAIT)
        numbers.insert(numbers.end(), {SIGTSTP, SIGCONT});
    return numbers;
}

} // namespace

// If standard input is closed at the start, the next file gets its number and must not be read.
Console::Console(Stops stops)
    : m_isInputOpen(::fcntl(STDIN_FILENO, F_GETFD) >= 0),
      m_isTerminal(::isatty(STDIN_FILENO) != 0),
      m_signals(signalsOf(stops))
{
    // A read of the terminal must fail, not stop the program, if it comes just after the change to
    // the background.
    Signals::hold(SIGTTIN);
}

Console::Input Console::wait(int timeout, bool takesKeys)
{
    const auto events = static_cast<short>(isReadable() ? POLLIN : 0);
    std::array<pollfd, 2> files = {
        {{m_signals.descriptor(), POLLIN, 0}, {STDIN_FILENO, events, 0}}};
    Input input;
    if (::poll(files.data(), m_isInputOpen ? 2 : 1, timeout) <= 0)
        return input;
    if (files[0].revents != 0)
        readSignals(input);
    if (files[1].revents != 0)
        readInput(input, takesKeys, (files[1].revents & POLLHUP) != 0);
    return input;
}

// In the background, the terminal's input belongs to another program.
bool Console::isReadable() const
{
    if (!m_isTerminal)
        return true;
    const pid_t group = ::tcgetpgrp(STDIN_FILENO);
    return group < 0 || group == ::getpgrp();
}

void Console::stop()
{
    ::raise(SIGTSTP);
    Signals::release(SIGTSTP); // stops here
    Signals::hold(SIGTSTP);
}

void Console::readSignals(Input &input) const
{
    for (const int number : m_signals.take()) {
        input.isReload = input.isReload || number == SIGHUP;
        input.isStop = input.isStop || number == SIGTSTP;
        input.isContinued = input.isContinued || number == SIGCONT;
        if (number == SIGINT || number == SIGTERM) {
            input.isEnd = true;
            Signals::release(number);
        }
    }
}

void Console::readInput(Input &input, bool takesKeys, bool isHungUp)
{
    std::array<char, 4096> bytes;
    const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count <= 0) {
        // In the background, a read of the terminal fails as well, and the terminal still exists.
        const bool isGone = m_isTerminal && (count == 0 || isHungUp);
        const bool isLater = count < 0 && (errno == EINTR || errno == EAGAIN);
        m_isInputOpen = isLater || (m_isTerminal && !isGone);
        input.isEnd = input.isEnd || isGone;
        if (m_isInputOpen || m_rest.empty())
            return;
        m_rest += '\n';
    }
    const std::string read(bytes.data(), static_cast<size_t>(std::max<ssize_t>(count, 0)));
    if (takesKeys)
        input.keys = read;
    else
        m_rest += read;
    takeLines(input);
}

void Console::takeLines(Input &input)
{
    for (size_t end = m_rest.find('\n'); end != std::string::npos; end = m_rest.find('\n')) {
        const std::string line = trimmed(m_rest.substr(0, end));
        if (!line.empty())
            input.lines.push_back(line);
        m_rest.erase(0, end + 1);
    }
    // The beginning of a line is enough for the message that refuses it.
    m_rest.resize(std::min(m_rest.size(), LONGEST_LINE));
}

} // namespace velko
