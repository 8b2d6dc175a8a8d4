#include "bytes/Func_Check.h"

#include "bytes/frame_layout.h"

#include "bytes/wire_order.h"
#include "driver/modbus_rtu_master.h"

namespace
{

const unsigned int CRC_POLYNOMIAL = 0xA001; // 0x8005, bit-reversed
const unsigned int CRC_START = 0xFFFF;

const unsigned char *bytesOf(const QByteArray &array)
{
    return reinterpret_cast<const unsigned char *>(array.constData());
}

unsigned int sumOf(const unsigned char *bytes, unsigned short length)
{
    unsigned int sum = 0;
    for (int i = 0; i < length; ++i)
        sum += bytes[i];
    return sum;
}

unsigned char byteAt(const QByteArray &array, int index)
{
    return static_cast<unsigned char>(array.at(index));
}

} // namespace

// Not inlined: the compiler unrolls this loop to a page of code, and one copy of it is enough. It
// also stays visible in profiles.
__attribute__((noinline)) unsigned short CalCRC(const unsigned char *bytes, unsigned short length)
{
    unsigned int crc = CRC_START;
    for (int i = 0; i < length; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < BYTE_BITS; ++bit)
            crc = (crc & 1U) ? crc >> 1 ^ CRC_POLYNOMIAL : crc >> 1;
    }
    return static_cast<unsigned short>(crc);
}

unsigned short CalSUM(const unsigned char *bytes, unsigned short length)
{
    return static_cast<unsigned short>(sumOf(bytes, length));
}

unsigned short CalLRC(const unsigned char *bytes, unsigned short length)
{
    return static_cast<unsigned short>((~sumOf(bytes, length) & 0xFFU) + 1U);
}

unsigned short CalXOR(const unsigned char *bytes, unsigned short length)
{
    unsigned int result = 0;
    for (int i = 0; i < length; ++i)
        result ^= bytes[i];
    return static_cast<unsigned short>(result);
}

int DigitalToASCII(int digit)
{
    const int offset = digit > 9 ? 'A' - 10 : '0';
    return static_cast<int>(static_cast<unsigned int>(digit) + static_cast<unsigned int>(offset));
}

int ASCIIToDigital(int character)
{
    if (character < '0' || character == '@')
        return 0;
    return character > '@' ? character - ('A' - 10) : character - '0';
}

void appendCRC(QByteArray &frame)
{
    const int crc = CalCRC(bytesOf(frame), static_cast<unsigned short>(frame.size()));
    putByte(frame, crc);
    putByte(frame, crc >> BYTE_BITS);
}

void appendSum(QByteArray &frame)
{
    putByte(frame, CalSUM(bytesOf(frame), static_cast<unsigned short>(frame.size())));
}

int CheckGetData(const QByteArray *reply, int length)
{
    const RW_VAR &request = PLC_driver.pendingList.first().var;
    if (length == 0 && request.station == BROADCAST_STATION)
        return REPLY_TO_WRITE; // no slave responds to a broadcast
    if (length < CRC_BYTES || length > reply->size())
        return REPLY_INVALID;

    const int covered = length - CRC_BYTES;
    const int crc = CalCRC(bytesOf(*reply), static_cast<unsigned short>(covered));
    if (byteAt(*reply, covered) != (crc & 0xFF) || byteAt(*reply, covered + 1) != crc >> BYTE_BITS)
        return REPLY_INVALID;

    switch (request.rwFlag) {
    case REQUEST_READ:
        return REPLY_TO_READ;
    case REQUEST_WRITE:
        return REPLY_TO_WRITE;
    default:
        return REPLY_INVALID;
    }
}
