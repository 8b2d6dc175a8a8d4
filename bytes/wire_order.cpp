#include "bytes/wire_order.h"

#include "driver/units.h"

void putByte(QByteArray &frame, int value)
{
    frame.append(static_cast<char>(value & 0xFF));
}

void putWord(QByteArray &frame, int value)
{
    putByte(frame, value >> BYTE_BITS);
    putByte(frame, value);
}

void putLong(QByteArray &frame, int value)
{
    putWord(frame, value >> REGISTER_BITS);
    putWord(frame, value);
}

int wordAt(const QByteArray &frame, int index)
{
    const int high = static_cast<unsigned char>(frame.at(index));
    const int low = static_cast<unsigned char>(frame.at(index + 1));
    return high << BYTE_BITS | low;
}

void swapRegisters(const char *from, int registers, char *to)
{
    for (int i = 0; i < REGISTER_BYTES * registers; i += REGISTER_BYTES) {
        to[i] = from[i + 1];
        to[i + 1] = from[i];
    }
}

QByteArray swappedRegisters(const QByteArray &bytes, int registers)
{
    QByteArray swapped(REGISTER_BYTES * registers, '\0');
    const QByteArray whole = bytes.leftJustified(swapped.size(), '\0', true);
    swapRegisters(whole.constData(), registers, swapped.data());
    return swapped;
}
