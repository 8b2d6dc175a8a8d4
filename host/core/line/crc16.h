// The CRC of a frame. The driver checks the CRC of a response. The host needs the CRC of exception
// responses, of frames of other stations and of simulated frames.
#pragma once

#include <QByteArray>

namespace velko
{

/// Returns the two bytes of the CRC in their order on the line, low byte first.
QByteArray crc16(const QByteArray &bytes);

/// True if the last two bytes are the CRC of the bytes before them.
bool endsInItsCrc(const QByteArray &frame);

} // namespace velko
