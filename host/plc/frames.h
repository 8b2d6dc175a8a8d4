// Modbus RTU frames as a slave receives them. A frame includes its station number and its CRC.
#pragma once

#include <QByteArray>

namespace velko
{

const int SHORTEST_FRAME = 4;       ///< station, function code, CRC
const int FRAME_BUFFER_BYTES = 512; ///< more bytes than any frame has

/// Length of a request with an unknown function code. Only a silent interval ends it.
const int UNKNOWN_LENGTH = FRAME_BUFFER_BYTES;

/// Returns the number of bytes of the request that begins with `beginning`, or UNKNOWN_LENGTH. If
/// `beginning` is too short, returns a lower limit that is greater than its size.
int requestLength(const QByteArray &beginning);

/// Appends the CRC.
QByteArray withCrc(const QByteArray &bytes);

/// Returns the exception response to the request, with its CRC. `code`: 0 to 255.
QByteArray exceptionResponse(const QByteArray &request, int code);

/// Inverts the lowest bit of the byte at `index`. The CRC is not corrected.
QByteArray withFlippedBit(QByteArray frame, int index);

} // namespace velko
