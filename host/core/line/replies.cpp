#include "host/core/line/replies.h"

#include "host/core/line/crc16.h"

#include <array>

namespace velko
{

int byteAt(const QByteArray &bytes, int index)
{
    return static_cast<unsigned char>(bytes.at(index));
}

int frameLength(const QByteArray &bytes)
{
    if (bytes.size() < 2)
        return EXCEPTION_BYTES; // the shortest frame
    const int function = byteAt(bytes, 1);
    if ((function & EXCEPTION_FLAG) != 0)
        return EXCEPTION_BYTES;
    if (function >= READ_COILS && function <= READ_INPUT_REGISTERS)
        return READ_OVERHEAD_BYTES + (bytes.size() > 2 ? byteAt(bytes, 2) : 0);
    const bool isWrite = function == WRITE_SINGLE_COIL || function == WRITE_SINGLE_REGISTER
                         || function == WRITE_MULTIPLE_COILS
                         || function == WRITE_MULTIPLE_REGISTERS;
    return isWrite ? SHORT_FRAME_BYTES : 0;
}

bool isExceptionTo(const QByteArray &request, const QByteArray &reply)
{
    return reply.size() == EXCEPTION_BYTES && request.size() >= 2 && reply.at(0) == request.at(0)
           && byteAt(reply, 1) == (byteAt(request, 1) | EXCEPTION_FLAG) && endsInItsCrc(reply);
}

int exceptionCode(const QByteArray &reply)
{
    return byteAt(reply, 2);
}

std::string exceptionText(int code)
{
    static const std::array<const char *, 12> names = {"",
                                                       "illegal function",
                                                       "illegal data address",
                                                       "illegal data value",
                                                       "slave device failure",
                                                       "acknowledge",
                                                       "slave device busy",
                                                       "negative acknowledge",
                                                       "memory parity error",
                                                       "",
                                                       "gateway path unavailable",
                                                       "gateway target device failed to respond"};
    const size_t index = static_cast<size_t>(code);
    const std::string name = code > 0 && index < names.size() ? names.at(index) : "";
    return "exception " + std::to_string(code) + " (" + (name.empty() ? "unknown" : name) + ")";
}

} // namespace velko
