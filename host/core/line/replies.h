// Reads fields of frames. The driver decides whether a response is good.
#pragma once

#include <QByteArray>

#include <string>

namespace velko
{

const int EXCEPTION_BYTES = 5;     // station, function, code, CRC
const int READ_OVERHEAD_BYTES = 5; // station, function, byte count, CRC

/// 0 to 255.
int byteAt(const QByteArray &bytes, int index);

/// Length of the response frame that begins with `bytes`. While there are too few bytes to know it,
/// a length greater than their number; 0 for an unknown function.
int frameLength(const QByteArray &bytes);

/// True if `reply` is a complete exception response to the request, with its CRC.
bool isExceptionTo(const QByteArray &request, const QByteArray &reply);

/// `reply` is an exception response.
int exceptionCode(const QByteArray &reply);

/// "exception 2 (illegal data address)"
std::string exceptionText(int code);

} // namespace velko
