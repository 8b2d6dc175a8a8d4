// The registers of the slaves on a simulated line, and their responses.
#pragma once

#include "velko_modbus_rtu.h"

#include <QByteArray>

#include <map>
#include <utility>

class SlaveMemory
{
public:
    /// Changes the value of every register that was never written, as measured values change.
    void passTime() { ++m_time; }

    /// Returns the value of a register; `number` counts within the area, as a host does.
    int read(int station, int area, int number) const;

    /// Executes a queued write, bit by bit or byte by byte.
    void write(const RW_VAR &record);

    /// Executes a request frame and returns the response, an exception response if it is not
    /// possible.
    QByteArray responseTo(const QByteArray &frame);

    static QByteArray exception(const QByteArray &frame);

    bool operator==(const SlaveMemory &other) const { return m_written == other.m_written; }

private:
    int onLine(bool input, int station, int number) const;

    unsigned m_time = 0;
    std::map<std::pair<int, int>, int> m_written; // station and register address -> value
};
