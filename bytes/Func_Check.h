// Checksums and the check of responses.
#pragma once

#include <QByteArray>

/// Returns the CRC-16 of Modbus RTU; 0xFFFF for no bytes.
unsigned short CalCRC(const unsigned char *bytes, unsigned short length);

/// Returns the sum of the bytes modulo 65,536.
unsigned short CalSUM(const unsigned char *bytes, unsigned short length);

/// Returns the two's complement of the low byte of the sum, or 256 where that is 0.
unsigned short CalLRC(const unsigned char *bytes, unsigned short length);

/// Returns the XOR of the bytes; 0 for no bytes.
unsigned short CalXOR(const unsigned char *bytes, unsigned short length);

/// Converts 0 to 15 into '0' to 'F'. Does not check the range.
int DigitalToASCII(int digit);

/// Converts '0' to '9' and 'A' to 'F' into 0 to 15. Does not check the range.
int ASCIIToDigital(int character);

/// Appends the CRC of the frame, low byte first. The frame has at most 65,533 bytes before the call.
void appendCRC(QByteArray &frame);

/// Appends the low byte of the frame's CalSUM. The frame has at most 65,534 bytes before the call.
void appendSum(QByteArray &frame);

enum ReplyCheck { REPLY_INVALID = 0, REPLY_TO_READ = 1, REPLY_TO_WRITE = 2 };

/// Checks the CRC of the first `length` bytes of a response to the frame at the head of
/// pendingList, which must not be empty. The result also says whether that frame is a read or a
/// write. Communication thread.
int CheckGetData(const QByteArray *reply, int length);
