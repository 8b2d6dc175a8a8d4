// File descriptors that are closed with their owner.
#pragma once

#include <array>

namespace velko
{

class Descriptor
{
public:
    /// Takes ownership of an open descriptor.
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor();
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int get() const { return m_fd; }

private:
    int m_fd;
};

/// Two connected, non-blocking sockets: what is written to one end is read from the other.
class SocketPair
{
public:
    /// Throws std::runtime_error.
    SocketPair();
    ~SocketPair();
    SocketPair(const SocketPair &) = delete;
    SocketPair &operator=(const SocketPair &) = delete;

    int inner() const { return m_ends[0]; }
    int outer() const { return m_ends[1]; }

private:
    std::array<int, 2> m_ends{};
};

} // namespace velko
