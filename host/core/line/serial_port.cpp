#include "host/core/line/serial_port.h"

#include "host/core/line/port_error.h"
#include "host/core/text/joined.h"

#include <linux/serial.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <cstring>

namespace velko
{

namespace
{

const int WRITE_TIMEOUT = 15000; // milliseconds: the largest frame takes 9.4 s at 300 baud

QSerialPort::Parity parityOf(char letter)
{
    switch (letter) {
    case 'E':
        return QSerialPort::EvenParity;
    case 'O':
        return QSerialPort::OddParity;
    default:
        return QSerialPort::NoParity;
    }
}

// A pseudo-terminal has no parity. Some functions of the system fail if parity is set.
bool isPseudoTerminal(const std::string &device)
{
    const unsigned first = 136; // of the major device numbers for pseudo-terminals
    const unsigned last = 143;
    struct stat status = {};
    return ::stat(device.c_str(), &status) == 0 && S_ISCHR(status.st_mode)
           && major(status.st_rdev) >= first && major(status.st_rdev) <= last;
}

// The reason why a port cannot be opened, and advice.
std::string adviceOn(const QSerialPort &port)
{
    switch (port.error()) {
    case QSerialPort::DeviceNotFoundError:
        return "there is no such device";
    case QSerialPort::PermissionError:
        return port.errorString().toStdString()
               + ". End the program that uses it, or add your user to its group, often "
                 "\"dialout\".";
    default:
        break;
    }
    return "it is not a serial port, or does not support these settings: "
           + port.errorString().toStdString();
}

} // namespace

std::unique_ptr<BytePort> SerialPort::open(const LineSettings &settings,
                                           const AdapterIdentity &lastSeen)
{
    return std::unique_ptr<BytePort>(new SerialPort(settings, lastSeen));
}

SerialPort::SerialPort(const LineSettings &settings, const AdapterIdentity &lastSeen)
    : m_device(findPort(settings.devices, lastSeen))
{
    if (m_device.empty())
        throw PortError("serial port " + joined(settings.devices)
                        + " cannot be opened: there is no such device");
    configure(settings);
    if (!m_port.open(QIODevice::ReadWrite))
        fail("cannot be opened: " + adviceOn(m_port));
    setDirectionControl(settings.rs485);
}

void SerialPort::configure(const LineSettings &settings)
{
    m_port.setPortName(QString::fromStdString(m_device));
    m_port.setBaudRate(settings.baudRate);
    m_port.setParity(isPseudoTerminal(m_device) ? QSerialPort::NoParity
                                                : parityOf(settings.parity));
    m_port.setStopBits(settings.stopBits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
}

// The kernel switches the direction directly after the last bit. A program is too late for that.
void SerialPort::setDirectionControl(Rs485 mode)
{
    if (mode == Rs485::OFF)
        return;
    serial_rs485 control = {};
    control.flags =
        SER_RS485_ENABLED
        | (mode == Rs485::RTS_ON_SEND ? SER_RS485_RTS_ON_SEND : SER_RS485_RTS_AFTER_SEND);
    if (::ioctl(m_port.handle(), TIOCSRS485, &control) != 0)
        fail(
            std::string("cannot switch the RS-485 direction (") + std::strerror(errno)
            + "): its kernel driver has no TIOCSRS485. Use an adapter that switches by itself, and "
              "leave out rs485.");
}

void SerialPort::write(const QByteArray &bytes)
{
    if (m_port.write(bytes) != bytes.size())
        fail("does not accept a frame: " + m_port.errorString().toStdString());
    // A full buffer is not an error: the loop waits for room.
    if (!m_port.flush())
        m_port.clearError();
    while (m_port.bytesToWrite() > 0)
        if (!m_port.waitForBytesWritten(WRITE_TIMEOUT))
            fail("was disconnected, or accepts no bytes: " + m_port.errorString().toStdString());
}

QByteArray SerialPort::read(int timeout)
{
    const bool isThere = m_port.bytesAvailable() > 0 || m_port.waitForReadyRead(timeout);
    const QSerialPort::SerialPortError error = m_port.error();
    if (error != QSerialPort::NoError && error != QSerialPort::TimeoutError)
        fail("was disconnected: " + m_port.errorString().toStdString());
    m_port.clearError();
    return isThere ? m_port.readAll() : QByteArray();
}

void SerialPort::fail(const std::string &what) const
{
    throw PortError("serial port " + m_device + " " + what);
}

} // namespace velko
