// What each fault does to a request and to its response. Names, numbers and help lines of the faults
// are in faults.cpp. No function keeps state.
#pragma once

#include "host/plc/faults.h"
#include "host/plc/outbox.h"

#include <QByteArray>

#include <chrono>
#include <optional>
#include <vector>

namespace velko
{

/// Response of a station whose fault prevents that it executes the request; an empty one: it does not
/// respond. No value: the station executes the request.
std::optional<QByteArray> responseWithoutExecution(const QByteArray &request, const Fault &fault);

/// How much later than without the fault the response starts.
std::chrono::milliseconds delayOf(const Fault &fault);

/// What the station sends for a whole, correct response. `gap`: silent interval between two frames.
std::vector<Piece> piecesOf(const QByteArray &response, const Fault &fault,
                            std::chrono::nanoseconds gap);

} // namespace velko
