// What each fault does to a request and to its response. Names, numbers and help lines of the
// faults are in faults.cpp. No function keeps state.
#pragma once

#include "host/plc/faults.h"
#include "host/plc/outbox.h"

#include <QByteArray>

#include <chrono>
#include <optional>
#include <vector>

namespace velko
{

/// Returns the response of a station whose fault prevents the execution of the request; an empty
/// one if the station does not respond. No value: the station executes the request.
std::optional<QByteArray> responseWithoutExecution(const QByteArray &request, const Fault &fault);

/// Returns how much later the fault makes the response begin.
std::chrono::milliseconds delayOf(const Fault &fault);

/// Returns what the station sends instead of a complete, correct response. `gap`: silent interval
/// between two frames.
std::vector<Piece> piecesOf(const QByteArray &response, const Fault &fault,
                            std::chrono::nanoseconds gap);

} // namespace velko
