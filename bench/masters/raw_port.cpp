#include "bench/masters/raw_port.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace
{

const int TIMEOUT = 1000; // milliseconds

[[noreturn]] void fail(const std::string &what)
{
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

} // namespace

RawPort::RawPort(const std::string &device)
    : m_fd(::open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK))
{
    if (m_fd < 0)
        fail(device + " cannot be opened");
    termios settings{};
    if (::tcgetattr(m_fd, &settings) == 0) {
        ::cfmakeraw(&settings);
        if (::tcsetattr(m_fd, TCSANOW, &settings) == 0)
            return;
    }
    ::close(m_fd);
    fail(device + " cannot be made raw");
}

RawPort::~RawPort()
{
    ::close(m_fd);
}

void RawPort::write(const char *bytes, int count) const
{
    if (::write(m_fd, bytes, static_cast<size_t>(count)) != count)
        fail("the port does not take a frame");
}

int RawPort::read(int expected)
{
    if (expected < 0 || static_cast<size_t>(expected) > m_bytes.size())
        throw std::runtime_error("no frame has " + std::to_string(expected) + " bytes");
    int count = 0;
    while (count < expected) {
        pollfd input = {m_fd, POLLIN, 0};
        if (::poll(&input, 1, TIMEOUT) <= 0)
            return count;
        const ssize_t got =
            ::read(m_fd, m_bytes.data() + count, static_cast<size_t>(expected - count));
        if (got <= 0)
            fail("the port has gone");
        count += static_cast<int>(got);
    }
    return count;
}
