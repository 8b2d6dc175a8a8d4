// The requests that a simulated line has received.
#pragma once

#include "host/core/line/clock.h"

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace velko
{

/// A request as it arrived, to any station.
struct SeenRequest {
    Clock::time_point arrival; ///< of its first byte
    Clock::time_point end;     ///< of the last byte of the response; without a response, of its
                               ///< processing
    QByteArray frame;
};

/// Has no lock: its owner guards it.
class RequestLog
{
public:
    static const size_t MAX_REQUESTS = 100000; ///< if there are more, the oldest are removed

    /// Returns the entry number of the request, for `noteEnd`.
    uint64_t add(Clock::time_point arrival, const QByteArray &frame);

    /// Sets the end of the request to now, unless it was removed.
    void noteEnd(uint64_t entry);

    /// Returns the requests, oldest first.
    std::vector<SeenRequest> requests() const { return {m_requests.begin(), m_requests.end()}; }

private:
    std::deque<SeenRequest> m_requests;
    uint64_t m_removed = 0; // number of removed entries
};

} // namespace velko
