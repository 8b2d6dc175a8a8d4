#include "host/commands/signals.h"

#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <string>

namespace velko
{

namespace
{

sigset_t setOf(const std::vector<int> &numbers)
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : numbers)
        sigaddset(&set, number);
    return set;
}

} // namespace

Signals::Signals(const std::vector<int> &numbers)
{
    const sigset_t set = setOf(numbers);
    m_descriptor = ::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_descriptor < 0 || ::pthread_sigmask(SIG_BLOCK, &set, nullptr) != 0)
        throw std::runtime_error(std::string("cannot wait for signals: ") + std::strerror(errno));
}

Signals::~Signals()
{
    ::close(m_descriptor);
}

std::vector<int> Signals::take() const
{
    std::vector<int> taken;
    signalfd_siginfo signal = {};
    while (::read(m_descriptor, &signal, sizeof signal) == sizeof signal)
        taken.push_back(static_cast<int>(signal.ssi_signo));
    return taken;
}

void Signals::release(int number)
{
    const sigset_t set = setOf({number});
    ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

void Signals::hold(int number)
{
    const sigset_t set = setOf({number});
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

} // namespace velko
