#include "tests/slave_memory.h"

#include "host/core/line/crc16.h"
#include "host/core/line/replies.h"

#include <gtest/gtest.h>

using namespace velko;

namespace
{

const int WRITE_REGISTERS = 0x10;

int numberOnLine(int area, int number)
{
    return (number + (area == AREA_HOLDING_5000 ? 5000 : 0)) & 0xFFFF;
}

int wordAt(const QByteArray &frame, int index)
{
    return byteAt(frame, index) << 8 | byteAt(frame, index + 1);
}

QByteArray sealed(const QByteArray &bytes)
{
    return bytes + crc16(bytes);
}

} // namespace

// Neighbouring registers have different values.
int SlaveMemory::onLine(bool input, int station, int number) const
{
    const auto found = m_written.find({station, number});
    if (!input && found != m_written.end())
        return found->second;
    const int place = number + station * 131 + (input ? 7000 : 0);
    return static_cast<int>((static_cast<unsigned>(place) + m_time * 977) * 40503 >> 5 & 0xFFFFU);
}

int SlaveMemory::read(int station, int area, int number) const
{
    return onLine(area == AREA_INPUT, station, numberOnLine(area, number));
}

void SlaveMemory::write(const RW_VAR &record)
{
    const int bits = record.varKind < KIND_INPUT_BYTE ? 1 : 8;
    const int units = record.varKind < KIND_INPUT_WORD ? record.count : 2 * record.count;
    for (int i = 0; i < units; ++i) {
        const int firstBit = (record.addr + i) * bits;
        const int number = numberOnLine(AREA_INPUT + record.varKind % 3, firstBit / 16);
        const int given = i < record.value.size() ? byteAt(record.value, i) : 0;
        const int value = bits == 1 ? given != 0 : given;
        const int others = ~(((1 << bits) - 1) << firstBit % 16);
        const int before = onLine(false, record.station, number);
        m_written[{record.station, number}] = (before & others) | value << firstBit % 16;
    }
}

QByteArray SlaveMemory::exception(const QByteArray &frame)
{
    QByteArray response = frame.left(2);
    response[1] = static_cast<char>(byteAt(frame, 1) | 0x80);
    return sealed(response.append('\x02'));
}

QByteArray SlaveMemory::responseTo(const QByteArray &frame)
{
    EXPECT_TRUE(endsInItsCrc(frame)) << "a slave would ignore this frame";
    const int station = byteAt(frame, 0);
    const int function = byteAt(frame, 1);
    const int first = wordAt(frame, 2);
    const int count = wordAt(frame, 4);
    const bool isWrite = function == WRITE_REGISTERS;
    if (count < 1 || first + count > 65536 || frame.size() != (isWrite ? 9 + 2 * count : 8))
        return exception(frame);
    for (int i = 0; isWrite && i < count; ++i)
        m_written[{station, first + i}] = wordAt(frame, 7 + 2 * i);
    if (isWrite)
        return sealed(frame.left(6));
    QByteArray response = frame.left(2).append(static_cast<char>(2 * count));
    for (int i = 0; i < count; ++i) {
        const int value = onLine(function == 4, station, first + i);
        response.append(static_cast<char>(value >> 8)).append(static_cast<char>(value));
    }
    return sealed(response);
}
