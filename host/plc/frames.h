// Modbus RTU frames as a slave sees them. A frame includes its station number and its CRC.
#pragma once

#include <QByteArray>

namespace velko
{

const int CRC_BYTES = 2;
const int SHORTEST_FRAME = 4;       ///< station, function code, CRC
const int FRAME_BUFFER_BYTES = 512; ///< more bytes than any frame has

/// Of a request that only a silent interval ends, since its function code does not tell its length.
const int UNKNOWN_LENGTH = FRAME_BUFFER_BYTES;

/// Number of bytes of the request that starts with `beginning`, or UNKNOWN_LENGTH. While the beginning
/// is too short to know, the result is a lower limit above its size.
int requestLength(const QByteArray &beginning);

QByteArray withCrc(const QByteArray &bytes);

/// `code`: 0 to 255.
QByteArray exceptionResponse(const QByteArray &request, int code);

/// Inverts the lowest bit of the byte at `index`; the CRC remains.
QByteArray withFlippedBit(QByteArray frame, int index);

} // namespace velko
