// What the bytes on a line say about themselves. Whether a reply is good is the driver's to judge.
#pragma once

#include <QByteArray>

#include <string>

namespace velko
{

const int EXCEPTION_BYTES = 5;     // station, function, code, CRC
const int READ_OVERHEAD_BYTES = 5; // station, function, byte count, CRC

/// 0 to 255.
int byteAt(const QByteArray &bytes, int index);

/// Bytes of the reply frame that begins with `bytes`, as far as they tell: while they are too few to
/// know, a length above their number; 0 for a function whose replies are not known.
int frameLength(const QByteArray &bytes);

/// True for a whole exception reply, checksum included, to the request.
bool isExceptionTo(const QByteArray &request, const QByteArray &reply);

/// Of an exception reply.
int exceptionCode(const QByteArray &reply);

/// "exception 2 (illegal data address)"
std::string exceptionText(int code);

} // namespace velko
