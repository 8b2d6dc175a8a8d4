// The byte operations of the data store. Every caller holds storeMutex, also for reads, because a
// lookup may insert an entry.
#pragma once

#include "driver/records.h"

#include <QByteArray>

/// Returns the image of an area of a station. If there is none, inserts an empty one. The reference
/// is valid while storeMutex is held.
AreaImage &areaImage(int station, int areaCode);

/// Returns the byte at an index, or 0 if the image does not hold it.
unsigned char readByte(const AreaImage &image, qint64 index);

/// Copies `length` bytes of the image, from `index` on, to `to`. Where the image holds no byte,
/// `to` is not changed.
void readBytes(const AreaImage &image, qint64 index, int length, char *to);

/// Writes `registers` registers in wire order, from register `first` on. The image grows to hold
/// them. Bytes below index 0 and from index LIMIT_IMAGE_BYTES on are not written.
void writeRegisters(AreaImage &image, qint64 first, const char *wire, int registers);

/// The same for `length` bytes from `index` on. Bytes that are missing in `bytes` are written as 0.
void writeBytes(AreaImage &image, qint64 index, qint64 length, const QByteArray &bytes);

/// The same for `length` bits. Sets bit i of them if byte i of `bytes` is not 0, else clears it.
/// `bit` counts from the lowest bit of the image's first byte. All other bits keep their values.
void writeBits(AreaImage &image, qint64 bit, qint64 length, const QByteArray &bytes);
