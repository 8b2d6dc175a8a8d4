// Checksums, and the check of replies.
#pragma once

#include <QByteArray>

/// CRC-16 of Modbus over serial line; 0xFFFF for no bytes.
unsigned short CalCRC(const unsigned char *bytes, unsigned short length);

/// Sum of the bytes modulo 65,536.
unsigned short CalSUM(const unsigned char *bytes, unsigned short length);

/// Two's complement of the byte sum, but 256 where that is 0.
unsigned short CalLRC(const unsigned char *bytes, unsigned short length);

/// XOR of the bytes; 0 for none.
unsigned short CalXOR(const unsigned char *bytes, unsigned short length);

/// 0 to 15 -> '0' to 'F'; no range is checked.
int DigitalToASCII(int digit);

/// '0' to '9' and 'A' to 'F' -> 0 to 15; no range is checked.
int ASCIIToDigital(int character);

/// Appends the CRC of the frame, low byte first. The frame is at most 65,533 bytes long.
void appendCRC(QByteArray &frame);

/// Appends the low byte of the frame's CalSUM. The frame is at most 65,534 bytes long.
void appendSum(QByteArray &frame);

enum ReplyCheck { REPLY_INVALID = 0, REPLY_TO_READ = 1, REPLY_TO_WRITE = 2 };

/// Judges the first `length` bytes of a reply to the frame at the head of pendingList, which must not
/// be empty: is the CRC right, and does it answer a read or a write? Communication thread.
int CheckGetData(const QByteArray *reply, int length);
