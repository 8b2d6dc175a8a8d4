#include "host/replies.h"

namespace
{

const int EXCEPTION_REPLY_BYTES = 5;
const int EXCEPTION_FLAG = 0x80;

int byteAt(const QByteArray &bytes, int index)
{
    return static_cast<unsigned char>(bytes.at(index));
}

std::string exceptionText(int code)
{
    static const char *const names[] = {
        "illegal function",         "illegal data address", "illegal data value",
        "slave device failure",     "acknowledge",          "slave device busy",
        "negative acknowledge",     "memory parity error",  "not used",
        "gateway path unavailable", "gateway target silent"};
    const int known = static_cast<int>(sizeof names / sizeof *names);
    const std::string name = code >= 1 && code <= known ? names[code - 1] : "unknown";
    return "exception " + std::to_string(code) + " (" + name + ")";
}

} // namespace

bool isException(const QByteArray &reply, const QByteArray &frame)
{
    return reply.size() == EXCEPTION_REPLY_BYTES && frame.size() >= 2
           && byteAt(reply, 1) == (byteAt(frame, 1) | EXCEPTION_FLAG);
}

std::string refusalOf(const QByteArray &reply, const QByteArray &frame, int expectedBytes)
{
    if (reply.isEmpty())
        return "no answer";
    if (isException(reply, frame))
        return exceptionText(byteAt(reply, 2));
    if (reply.size() != expectedBytes)
        return std::to_string(reply.size()) + " of " + std::to_string(expectedBytes) + " bytes";
    return "wrong CRC";
}
