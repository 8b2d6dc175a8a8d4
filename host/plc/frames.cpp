#include "host/plc/frames.h"

#include "host/core/line/crc16.h"
#include "host/core/line/replies.h"
#include "host/core/sizes/frames.h"

#include <modbus.h>

namespace velko
{

namespace
{

const int BYTE_COUNT_INDEX = WRITE_HEADER_BYTES - 1;
const int FUNCTION_INDEX = 1;

} // namespace

int requestLength(const QByteArray &beginning)
{
    if (beginning.size() <= FUNCTION_INDEX)
        return FUNCTION_INDEX + 1;
    const int function = byteAt(beginning, FUNCTION_INDEX);
    if (function >= MODBUS_FC_READ_COILS && function <= MODBUS_FC_WRITE_SINGLE_REGISTER)
        return SHORT_FRAME_BYTES;
    if (function != MODBUS_FC_WRITE_MULTIPLE_COILS
        && function != MODBUS_FC_WRITE_MULTIPLE_REGISTERS)
        return UNKNOWN_LENGTH;
    if (beginning.size() < WRITE_HEADER_BYTES)
        return WRITE_HEADER_BYTES;
    return WRITE_HEADER_BYTES + byteAt(beginning, BYTE_COUNT_INDEX) + CRC_BYTES;
}

QByteArray withCrc(const QByteArray &bytes)
{
    return bytes + crc16(bytes);
}

QByteArray exceptionResponse(const QByteArray &request, int code)
{
    QByteArray response = request.left(1);
    response.append(static_cast<char>(byteAt(request, FUNCTION_INDEX) | EXCEPTION_FLAG));
    response.append(static_cast<char>(code));
    return withCrc(response);
}

QByteArray withFlippedBit(QByteArray frame, int index)
{
    frame[index] = static_cast<char>(frame.at(index) ^ 0x01);
    return frame;
}

} // namespace velko
