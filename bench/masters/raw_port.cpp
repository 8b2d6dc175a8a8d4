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
        fail("cannot open " + device);
    termios settings{};
    if (::tcgetattr(m_fd, &settings) == 0) {
        ::cfmakeraw(&settings);
        if (::tcsetattr(m_fd, TCSANOW, &settings) == 0)
            return;
    }
    ::close(m_fd);
    fail("cannot set " + device + " to raw mode");
}

RawPort::~RawPort()
{
    ::close(m_fd);
}

void RawPort::write(const char *bytes, int count) const
{
    if (::write(m_fd, bytes, static_cast<size_t>(count)) != count)
        fail("cannot write a frame to the port");
}

int RawPort::read(int expected)
{
    if (expected < 0 || static_cast<size_t>(expected) > m_bytes.size())
        throw std::runtime_error("invalid frame length: " + std::to_string(expected) + " bytes");
    int count = 0;
    while (count < expected) {
        pollfd input = {m_fd, POLLIN, 0};
        if (::poll(&input, 1, TIMEOUT) <= 0)
            return count;
        const ssize_t got =
            ::read(m_fd, m_bytes.data() + count, static_cast<size_t>(expected - count));
        if (got <= 0)
            fail("the port is disconnected");
        count += static_cast<int>(got);
    }
    return count;
}
