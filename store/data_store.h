// The byte operations of the data store. Every caller holds storeMutex, for reads as well: a
// look-up may insert an entry.
#ifndef STORE_DATA_STORE_H
#define STORE_DATA_STORE_H

#include "driver/records.h"

/// The image of an area of a station, made empty when there is none. Valid while storeMutex is
/// held.
AreaImage &areaImage(int station, int areaCode);

/// Grows an image, with bytes 0, to at least `bytes`, or to LIMIT_IMAGE_BYTES. Callers that write a
/// run grow once and then write.
void growImage(AreaImage &image, qint64 bytes);

/// The byte at an index; 0 for one that the image does not hold.
unsigned char readByte(const AreaImage &image, qint64 index);

/// Sets the byte at an index, growing the image to hold it. An index below 0, or from
/// LIMIT_IMAGE_BYTES on, is left alone.
void writeByte(AreaImage &image, qint64 index, unsigned char byte);

#endif
