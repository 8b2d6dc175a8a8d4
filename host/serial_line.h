// The serial line: one request and its answer at a time.
#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QSerialPort>
#include <QString>

#include <string>

struct LineSettings {
    QString device;
    int baudRate = 19200;
    char parity = 'N';      ///< N, E or O
    int replyTimeout = 500; ///< milliseconds until the first byte of an answer
};

class SerialLine
{
public:
    /// Opens the port. Throws std::runtime_error that names the device and the reason.
    explicit SerialLine(const LineSettings &settings);

    /// Empties the line, sends a frame and collects the answer: up to `replyLength` bytes, or an
    /// exception reply, or what came before the time-out. Throws std::runtime_error when the port
    /// itself fails.
    QByteArray exchange(const QByteArray &frame, int replyLength);

private:
    void waitForSilence() const;
    void send(const QByteArray &frame);
    QByteArray receive(const QByteArray &frame, int replyLength);
    void discardInput(int quietTime);
    [[noreturn]] void fail(const std::string &what) const;

    LineSettings m_settings;
    QSerialPort m_port;
    QElapsedTimer m_sinceLastByte;
};
