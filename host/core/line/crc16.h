// The CRC of a frame. The driver checks the responses that it judges; the host checks exception
// responses and frames of other stations, and the simulated PLC makes faults with it.
#pragma once

#include <QByteArray>

namespace velko
{

/// The two bytes as on the line, low byte first.
QByteArray crc16(const QByteArray &bytes);

/// True if the last two bytes are the CRC of the bytes before them.
bool endsInItsCrc(const QByteArray &frame);

} // namespace velko
