// A serial port for a small master: writes bytes, and reads until the expected number has arrived.
#pragma once

#include <array>
#include <string>

class RawPort
{
public:
    /// Opens the device and sets it to raw mode. Throws std::runtime_error.
    explicit RawPort(const std::string &device);
    ~RawPort();
    RawPort(const RawPort &) = delete;
    RawPort &operator=(const RawPort &) = delete;

    /// Throws std::runtime_error.
    void write(const char *bytes, int count) const;

    /// Reads into bytes() until `expected` bytes have arrived or no byte arrives for one second.
    /// Returns the number of bytes. Throws std::runtime_error.
    int read(int expected);
    const char *bytes() const { return m_bytes.data(); }

private:
    int m_fd;
    std::array<char, 256> m_bytes{}; // the longest frame
};
