// The registers of the slaves on a scripted line, and the answers that they give.
#pragma once

#include "velko_modbus_rtu.h"

#include <map>
#include <utility>

class SlaveMemory
{
public:
    /// Every register that was never written changes its value, as measured values do.
    void passTime() { ++m_time; }

    /// The register of an area, as a host numbers it.
    int read(int station, int area, int number) const;

    /// Does what a queued write says, bit by bit or byte by byte.
    void write(const RW_VAR &record);

    /// Obeys a request frame; the answer, an exception where the frame asks for the impossible.
    QByteArray answer(const QByteArray &frame);

    static QByteArray exception(const QByteArray &frame);

    bool operator==(const SlaveMemory &other) const { return m_written == other.m_written; }

private:
    int onLine(bool input, int station, int number) const;

    unsigned m_time = 0;
    std::map<std::pair<int, int>, int> m_written; // station and number on the line: register
};
