// An open serial port.
#pragma once

#include "host/core/line/byte_port.h"

#include <QByteArray>
#include <QSerialPort>

#include <string>

namespace velko
{

class SerialPort : public BytePort
{
public:
    /// Is a PortOpener.
    static std::unique_ptr<BytePort> open(const LineSettings &settings,
                                          const AdapterIdentity &lastSeen);

    const std::string &device() const override { return m_device; }
    void write(const QByteArray &bytes) override;
    QByteArray read(int timeout) override;

private:
    SerialPort(const LineSettings &settings, const AdapterIdentity &lastSeen);
    void configure(const LineSettings &settings);
    void setDirectionControl(Rs485 mode);
    [[noreturn]] void fail(const std::string &what) const;

    std::string m_device;
    QSerialPort m_port;
};

} // namespace velko
