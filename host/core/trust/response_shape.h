// What is known of a response before it comes.
#pragma once

#include <QByteArray>

namespace velko
{

/// Responses of one station with the same shape cannot be told apart, except those to writes, which
/// repeat their registers.
struct ResponseShape {
    int function = 0; ///< function code of the frame
    int length = 0;   ///< bytes of the frame

    bool operator==(const ResponseShape &other) const
    {
        return function == other.function && length == other.length;
    }
    bool operator!=(const ResponseShape &other) const { return !(*this == other); }
};

/// The shape of a good response to the request. `responseLength`: its bytes.
ResponseShape shapeOfResponse(const QByteArray &request, int responseLength);

/// The shape of a whole frame.
ResponseShape shapeOf(const QByteArray &frame);

} // namespace velko
