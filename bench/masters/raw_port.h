// A serial port as a small master uses it: bytes out, and in until the expected number is there.
#pragma once

#include <array>
#include <string>

class RawPort
{
public:
    /// Opens the device and makes it raw. Throws std::runtime_error.
    explicit RawPort(const std::string &device);
    ~RawPort();
    RawPort(const RawPort &) = delete;
    RawPort &operator=(const RawPort &) = delete;

    /// Throws std::runtime_error.
    void write(const char *bytes, int count) const;

    /// Reads into bytes(), until `expected` bytes are there or none came for a second. Returns their
    /// number. Throws std::runtime_error.
    int read(int expected);
    const char *bytes() const { return m_bytes.data(); }

private:
    int m_fd;
    std::array<char, 256> m_bytes{}; // the longest frame
};
