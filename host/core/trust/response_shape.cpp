#include "host/core/trust/response_shape.h"

#include "host/core/line/replies.h"

namespace velko
{

ResponseShape shapeOfResponse(const QByteArray &request, int responseLength)
{
    return {byteAt(request, 1), responseLength};
}

ResponseShape shapeOf(const QByteArray &frame)
{
    return {byteAt(frame, 1), frame.size()};
}

} // namespace velko
