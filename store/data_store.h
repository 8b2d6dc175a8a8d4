// The byte operations of the data store. Every caller holds storeMutex, for reads as well: a
// look-up may insert an entry.
#pragma once

#include "driver/records.h"

/// The image of an area of a station, made empty when there is none. Valid while storeMutex is
/// held.
AreaImage &areaImage(int station, int areaCode);

/// The byte at an index; 0 for one that the image does not hold.
unsigned char readByte(const AreaImage &image, qint64 index);

/// Copies those of `length` bytes from an index on that the image holds, each to its place in `to`.
void readBytes(const AreaImage &image, qint64 index, int length, char *to);

/// Writes `registers` registers as they travel on the line, from register `first` on, and grows the
/// image once to hold them. What lies below 0, or from LIMIT_IMAGE_BYTES on, is left out.
void writeRegisters(AreaImage &image, qint64 first, const char *wire, int registers);

/// The same for `length` bytes from an index on: those of `bytes`, and 0 for each that it lacks.
void writeBytes(AreaImage &image, qint64 index, qint64 length, const QByteArray &bytes);

/// The same for bits: bit i of the run is set when byte i of `bytes` is not 0. `bit` counts from the
/// lowest bit of the image's first byte. The other bits keep their values.
void writeBits(AreaImage &image, qint64 bit, qint64 length, const QByteArray &bytes);
