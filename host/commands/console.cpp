#include "host/commands/console.h"

#include <poll.h>
#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

namespace
{

const size_t LONGEST_LINE = 10000;

} // namespace

Console::Console()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_signals = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_signals < 0)
        throw std::runtime_error(std::string("signals cannot be waited for: ")
                                 + std::strerror(errno));
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
        readLines(input);
    return input;
}

void Console::readSignals(Input &input) const
{
    signalfd_siginfo signal = {};
    while (::read(m_signals, &signal, sizeof signal) == sizeof signal) {
        if (signal.ssi_signo == SIGHUP)
            input.isReload = true;
        else
            input.isEnd = true;
    }
}

void Console::readLines(Input &input)
{
    std::array<char, 4096> bytes;
    const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count <= 0) {
        m_isInputOpen = count < 0 && errno == EINTR;
        if (!m_isInputOpen && !m_rest.empty())
            input.lines.push_back(m_rest);
        return;
    }
    m_rest.append(bytes.data(), static_cast<size_t>(count));
    for (size_t end = m_rest.find('\n'); end != std::string::npos; end = m_rest.find('\n')) {
        if (end > 0)
            input.lines.push_back(m_rest.substr(0, end));
        m_rest.erase(0, end + 1);
    }
    if (m_rest.size() > LONGEST_LINE)
        m_rest.clear(); // no line at all
}
