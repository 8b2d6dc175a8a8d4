#include "host/commands/interruption.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>

namespace velko
{

namespace
{

const milliseconds SILENT_END(150);

} // namespace

Interruption::Interruption(CommunicationLoop &loop)
    : m_loop(loop),
      m_signals({SIGINT, SIGTERM}),
      m_end(::eventfd(0, EFD_CLOEXEC)),
      m_thread([this] { watch(); })
{
}

Interruption::~Interruption()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isOver = true;
    }
    m_changed.notify_all();
    const std::uint64_t one = 1;
    if (::write(m_end, &one, sizeof one) != sizeof one)
        std::perror("panelhost");
    m_thread.join();
    ::close(m_end);
}

bool Interruption::isRequested() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_isRequested;
}

void Interruption::wait(milliseconds time)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait_for(lock, time, [this] { return m_isRequested; });
}

void Interruption::watch()
{
    std::array<pollfd, 2> files = {{{m_signals.descriptor(), POLLIN, 0}, {m_end, POLLIN, 0}}};
    while (files[1].revents == 0) {
        if (::poll(files.data(), files.size(), -1) <= 0)
            continue;
        for (const int number : m_signals.take())
            take(number);
    }
}

void Interruption::take(int number)
{
    Signals::release(number); // on this thread, so that the next one ends the program
    m_loop.readCut().request();
    std::unique_lock<std::mutex> lock(m_mutex);
    m_isRequested = true;
    m_changed.notify_all();
    if (m_changed.wait_for(lock, SILENT_END, [this] { return m_isOver; }))
        return;
    const std::string awaited = m_loop.status().awaitedText();
    if (!awaited.empty())
        std::fprintf(stderr, "panelhost: waits for %s; press Ctrl-C to end at once\n",
                     awaited.c_str());
}

} // namespace velko
