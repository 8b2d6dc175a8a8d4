// Fields of response frames. The driver decides whether a response is good.
#pragma once

#include "host/core/sizes/frames.h"

#include <QByteArray>

#include <string>

namespace velko
{

/// Returns 0 to 255. `index` is within `bytes`.
int byteAt(const QByteArray &bytes, int index);

/// Returns the length in bytes of the response frame that begins with `bytes`, or 0 for an unknown
/// function. If there are too few bytes, returns a length greater than their number.
int frameLength(const QByteArray &bytes);

/// True if `reply` is a complete exception response to the request, with its CRC.
bool isExceptionTo(const QByteArray &request, const QByteArray &reply);

/// Returns the code of an exception response, 0 to 255.
int exceptionCode(const QByteArray &reply);

/// "exception 2 (illegal data address)"
std::string exceptionText(int code);

} // namespace velko
