#include "host/plc/fault_effects.h"

#include "host/core/line/replies.h"
#include "host/core/sizes/frames.h"
#include "host/core/sizes/limits.h"
#include "host/plc/frames.h"

#include <modbus.h>

#include <algorithm>

namespace velko
{

namespace
{

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

// The response of the next station to the same request. The values read are inverted, so that a
// master that takes them shows wrong ones.
QByteArray foreignResponse(const QByteArray &response)
{
    QByteArray foreign = response.left(response.size() - CRC_BYTES);
    foreign[0] = static_cast<char>(byteAt(response, 0) % HIGHEST_STATION + 1);
    const int function = byteAt(response, 1);
    if (function >= MODBUS_FC_READ_COILS && function <= MODBUS_FC_READ_INPUT_REGISTERS)
        std::transform(foreign.begin() + READ_HEADER_BYTES, foreign.end(),
                       foreign.begin() + READ_HEADER_BYTES,
                       [](char byte) { return static_cast<char>(~byte); });
    return withCrc(foreign);
}

// Noise that does not contain the number of the station whose response follows.
QByteArray junk(int size, int station)
{
    const QByteArray pattern = QByteArray::fromHex(station == 0xA5 ? "FF005A" : "FF00A5");
    return pattern.repeated(size / pattern.size() + 1).left(size);
}

} // namespace

std::optional<QByteArray> responseWithoutExecution(const QByteArray &request, const Fault &fault)
{
    switch (fault.kind) {
    case Fault::SILENT:
        return QByteArray();
    case Fault::EXCEPTION:
        return exceptionResponse(request, fault.number);
    default:
        return std::nullopt;
    }
}

milliseconds delayOf(const Fault &fault)
{
    return milliseconds(fault.kind == Fault::LATE ? fault.number : 0);
}

std::vector<Piece> piecesOf(const QByteArray &response, const Fault &fault, nanoseconds gap)
{
    const nanoseconds none(0);
    const int middle = response.size() / 2;
    switch (fault.kind) {
    case Fault::CUT:
        return {{none, response.left(fault.number)}};
    case Fault::FLIP:
        return {{none, withFlippedBit(response, response.size() - CRC_BYTES - 1)}};
    case Fault::JUNK:
        return {{none, junk(fault.number, byteAt(response, 0)) + response}};
    case Fault::FOREIGN:
        return {{none, foreignResponse(response)}, {gap, response}};
    case Fault::STUTTER:
        return {{none, response.left(middle)}, {milliseconds(fault.number), response.mid(middle)}};
    default:
        return {{none, response}};
    }
}

} // namespace velko
