// Decides which received frame is the response to the request.
#pragma once

#include "host/core/line/line_times.h"

#include <QByteArray>

namespace velko
{

class FrameJudge
{
public:
    virtual ~FrameJudge() = default;
    /// Called on the communication thread for each whole frame with a good CRC, of any station, in
    /// the order in which the frames arrive; also between two exchanges. `arrival`: of its last
    /// byte. Returns true if the frame is the response to the request that was sent last.
    virtual bool isResponse(const QByteArray &frame, Clock::time_point arrival) = 0;
};

} // namespace velko
