#include "host/core/line/crc16.h"

namespace velko
{

QByteArray crc16(const QByteArray &bytes)
{
    unsigned crc = 0xFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) != 0 ? crc >> 1 ^ 0xA001U : crc >> 1;
    }
    QByteArray result;
    result.append(static_cast<char>(crc & 0xFF)).append(static_cast<char>(crc >> 8));
    return result;
}

bool endsInItsCrc(const QByteArray &frame)
{
    const int covered = frame.size() - 2;
    return covered > 0 && crc16(frame.left(covered)) == frame.mid(covered);
}

} // namespace velko
