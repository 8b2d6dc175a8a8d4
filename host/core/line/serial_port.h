// An open serial port: bytes out, bytes in, and its errors as PortError.
#pragma once

#include "host/core/line/line_times.h"
#include "host/core/line/port_finder.h"

#include <QSerialPort>

namespace velko
{

class SerialPort
{
public:
    /// Opens what the settings name, `lastSeen` as in findPort. Throws PortError that names the
    /// device, the reason and what to do. The thread that opens it is the one that uses it.
    explicit SerialPort(const LineSettings &settings, const AdapterIdentity &lastSeen = {});

    /// The device that was opened.
    const std::string &device() const { return m_device; }

    /// Returns when the system has taken all bytes. Throws PortError.
    void write(const QByteArray &bytes);

    /// What is there, or comes within `timeout` milliseconds; empty when nothing does. Throws PortError.
    QByteArray read(int timeout);

private:
    void configure(const LineSettings &settings);
    void setDirectionControl(Rs485 mode);
    [[noreturn]] void fail(const std::string &what) const;

    std::string m_device;
    QSerialPort m_port;
};

} // namespace velko
