#include "host/core/line/crc16.h"

#include "host/core/sizes/units.h"

namespace velko
{

QByteArray crc16(const QByteArray &bytes)
{
    unsigned crc = 0xFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < BYTE_BITS; ++bit)
            crc = (crc & 1U) != 0 ? crc >> 1 ^ 0xA001U : crc >> 1;
    }
    QByteArray result;
    result.append(static_cast<char>(crc & 0xFF)).append(static_cast<char>(crc >> BYTE_BITS));
    return result;
}

bool endsInItsCrc(const QByteArray &frame)
{
    const int covered = frame.size() - 2;
    return covered > 0 && crc16(frame.left(covered)) == frame.mid(covered);
}

} // namespace velko
