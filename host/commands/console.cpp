#include "host/commands/console.h"

#include "host/core/text/assignment.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

namespace velko
{

namespace
{

const size_t LONGEST_LINE = 10000;

} // namespace

// If standard input is closed at the start, the next file gets its number and must not be read.
Console::Console()
    : m_isInputOpen(::fcntl(STDIN_FILENO, F_GETFD) >= 0),
      m_isTerminal(::isatty(STDIN_FILENO) != 0)
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    m_signals = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    // In the background, a read of the terminal must fail, not stop the program.
    sigaddset(&signals, SIGTTIN);
    if (m_signals < 0 || ::pthread_sigmask(SIG_BLOCK, &signals, nullptr) != 0)
        throw std::runtime_error(std::string("cannot wait for signals: ") + std::strerror(errno));
}

Console::~Console()
{
    ::close(m_signals);
}

Console::Input Console::wait(int milliseconds)
{
    std::array<pollfd, 2> files = {{{m_signals, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
    Input input;
    if (::poll(files.data(), m_isInputOpen ? 2 : 1, milliseconds) <= 0)
        return input;
    if (files[0].revents != 0)
        readSignals(input);
    if (files[1].revents != 0)
        readLines(input, (files[1].revents & POLLHUP) != 0);
    return input;
}

void Console::readSignals(Input &input) const
{
    signalfd_siginfo signal = {};
    while (::read(m_signals, &signal, sizeof signal) == sizeof signal) {
        if (signal.ssi_signo == SIGHUP) {
            input.isReload = true;
            continue;
        }
        input.isEnd = true;
        sigset_t same;
        sigemptyset(&same);
        sigaddset(&same, static_cast<int>(signal.ssi_signo));
        pthread_sigmask(SIG_UNBLOCK, &same, nullptr);
    }
}

void Console::readLines(Input &input, bool isHungUp)
{
    std::array<char, 4096> bytes;
    const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count <= 0) {
        m_isInputOpen = count < 0 && (errno == EINTR || errno == EAGAIN);
        // In the background, a read of the terminal fails as well, and the terminal still exists.
        input.isEnd = input.isEnd || (m_isTerminal && (count == 0 || isHungUp));
        if (m_isInputOpen || m_rest.empty())
            return;
        m_rest += '\n';
    }
    m_rest.append(bytes.data(), static_cast<size_t>(std::max<ssize_t>(count, 0)));
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
