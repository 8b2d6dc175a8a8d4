#include "host/serial_line.h"

#include "host/replies.h"

#include <QFileInfo>

#include <chrono>
#include <stdexcept>
#include <thread>

namespace
{

// USB adapters hand bytes over in batches, up to 16 ms apart.
const int BYTE_TIMEOUT = 50; // milliseconds

// An answer that comes later than the time-out would be taken for the answer to the next request,
// so after a time-out the line has to be quiet for a while. A chattering line is not waited for.
const int MAX_DISCARDS = 100;

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

// The pause that ends a frame: 3.5 characters of 11 bits, but 1.75 ms above 19,200 baud.
qint64 silenceMicroseconds(int baudRate)
{
    return baudRate > 19200 ? 1750 : 38500000LL / baudRate;
}

// QSerialPort looks for a bare name among the system's devices only.
QString pathOf(const QString &device)
{
    const QFileInfo file(device);
    return file.exists() ? file.absoluteFilePath() : device;
}

// Why a port cannot be opened, and what to do.
std::string adviceOn(const QSerialPort &port)
{
    switch (port.error()) {
    case QSerialPort::DeviceNotFoundError:
        return "there is no such device";
    case QSerialPort::PermissionError:
        return "another program uses it, or this user may not (its group is often dialout)";
    default:
        break;
    }
    return "it is no serial port, or refuses these settings: " + port.errorString().toStdString();
}

} // namespace

SerialLine::SerialLine(const LineSettings &settings) : m_settings(settings)
{
    m_port.setPortName(pathOf(settings.device));
    m_port.setBaudRate(settings.baudRate);
    m_port.setParity(parityOf(settings.parity));
    m_port.setStopBits(settings.parity == 'N' ? QSerialPort::TwoStop : QSerialPort::OneStop);
    if (!m_port.open(QIODevice::ReadWrite))
        fail("cannot be opened: " + adviceOn(m_port));
    m_sinceLastByte.start();
}

QByteArray SerialLine::exchange(const QByteArray &frame, int replyLength)
{
    waitForSilence();
    discardInput(0);
    send(frame);
    QByteArray reply = receive(frame, replyLength);
    m_sinceLastByte.start();
    if (reply.size() < replyLength && !isException(reply, frame))
        discardInput(m_settings.replyTimeout);
    return reply;
}

void SerialLine::waitForSilence() const
{
    const qint64 elapsed = m_sinceLastByte.nsecsElapsed() / 1000;
    const qint64 missing = silenceMicroseconds(m_settings.baudRate) - elapsed;
    if (missing > 0)
        std::this_thread::sleep_for(std::chrono::microseconds(missing));
}

void SerialLine::send(const QByteArray &frame)
{
    if (m_port.write(frame) != frame.size())
        fail("does not take a frame: " + m_port.errorString().toStdString());
    while (m_port.bytesToWrite() > 0) {
        if (!m_port.waitForBytesWritten(m_settings.replyTimeout))
            fail("has gone, or takes no bytes: " + m_port.errorString().toStdString());
    }
}

QByteArray SerialLine::receive(const QByteArray &frame, int replyLength)
{
    QByteArray reply;
    while (reply.size() < replyLength && !isException(reply, frame)) {
        const int timeout = reply.isEmpty() ? m_settings.replyTimeout : BYTE_TIMEOUT;
        if (m_port.bytesAvailable() == 0 && !m_port.waitForReadyRead(timeout))
            break;
        reply.append(m_port.read(replyLength - reply.size()));
    }
    const QSerialPort::SerialPortError error = m_port.error();
    if (error != QSerialPort::NoError && error != QSerialPort::TimeoutError)
        fail("has gone: " + m_port.errorString().toStdString());
    m_port.clearError();
    return reply;
}

void SerialLine::discardInput(int quietTime)
{
    m_port.readAll();
    for (int i = 0; i < MAX_DISCARDS && m_port.waitForReadyRead(quietTime); ++i)
        m_port.readAll();
    m_port.clearError();
}

void SerialLine::fail(const std::string &what) const
{
    throw std::runtime_error("serial port " + m_settings.device.toStdString() + " " + what);
}
