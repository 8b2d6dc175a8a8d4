// An open serial port.
#pragma once

#include "host/core/line/line_settings.h"
#include "host/core/line/port_finder.h"

#include <QByteArray>
#include <QSerialPort>

#include <string>

namespace velko
{

/// The thread that constructs the port uses it.
class SerialPort
{
public:
    /// Opens the port; `lastSeen` as in findPort. Throws PortError with the device, the reason and
    /// advice.
    explicit SerialPort(const LineSettings &settings, const AdapterIdentity &lastSeen = {});

    /// The device that is open.
    const std::string &device() const { return m_device; }

    /// Sends the bytes. Returns when the system has accepted all of them. Throws PortError.
    void write(const QByteArray &bytes);

    /// Returns the bytes received so far, or the first ones within `timeout` milliseconds; empty if
    /// there are none. Throws PortError.
    QByteArray read(int timeout);

private:
    void configure(const LineSettings &settings);
    void setDirectionControl(Rs485 mode);
    [[noreturn]] void fail(const std::string &what) const;

    std::string m_device;
    QSerialPort m_port;
};

} // namespace velko
