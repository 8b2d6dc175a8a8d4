// The checksum of a frame. The driver makes and judges it wherever it judges a reply; the host needs
// its own for what the driver never looks into: exception replies, other stations' frames and the
// faults of the simulated PLC.
#pragma once

#include <QByteArray>

namespace velko
{

/// The two bytes as they travel, low byte first.
QByteArray crc16(const QByteArray &bytes);

/// True when the last two bytes are the checksum of those before them.
bool endsInItsCrc(const QByteArray &frame);

} // namespace velko
