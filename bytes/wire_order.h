// Byte order on the line, the one place where it is decided: numbers high byte first, and registers
// swapped between the line (high byte first) and the store (low byte first).
#pragma once

#include <QByteArray>

/// Each appends the low 8, 16 or 32 bits of a number.
void putByte(QByteArray &frame, int value);
void putWord(QByteArray &frame, int value);
void putLong(QByteArray &frame, int value);

/// The register at byte `index` of a frame; the frame holds it.
int wordAt(const QByteArray &frame, int index);

/// Copies `registers` registers, each with its two bytes exchanged. The two do not overlap.
void swapRegisters(const char *from, int registers, char *to);

/// The first `registers` registers of `bytes`, each with its two bytes exchanged. Bytes that are not
/// there count as 0.
QByteArray swappedRegisters(const QByteArray &bytes, int registers);
