// The byte order of numbers and registers on the line, decided only here. Numbers travel high byte
// first. Registers are swapped between the line (high byte first) and the store (low byte first).
#pragma once

#include <QByteArray>

/// These append the low 8, 16 or 32 bits of a number.
void putByte(QByteArray &frame, int value);
void putWord(QByteArray &frame, int value);
void putLong(QByteArray &frame, int value);

/// Returns the register at byte `index` of a frame. The frame must hold both bytes.
int wordAt(const QByteArray &frame, int index);

/// Copies `registers` registers and swaps the two bytes of each. The buffers must not overlap.
void swapRegisters(const char *from, int registers, char *to);

/// Returns the first `registers` registers of `bytes` with the two bytes of each swapped. Missing
/// bytes count as 0.
QByteArray swappedRegisters(const QByteArray &bytes, int registers);
