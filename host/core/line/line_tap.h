// Observers of a line, for example the trace and the capture file.
#pragma once

#include "host/core/line/line_times.h"

#include <QByteArray>

#include <string>
#include <vector>

namespace velko
{

/// Each function is called on the communication thread of the link that `link` names. Several links
/// may share one tap, so an implementation needs a lock. `time`: when the first byte was sent, or
/// when the last byte arrived.
class LineTap
{
public:
    virtual ~LineTap() = default;
    /// The bytes of a request.
    virtual void sent(const std::string &link, const QByteArray &frame, Clock::time_point time) = 0;
    /// The bytes of a response, not empty.
    virtual void received(const std::string &link, const QByteArray &reply,
                          Clock::time_point time) = 0;
    /// Received bytes that do not belong to the response, not empty: a whole frame, or noise.
    virtual void dropped(const std::string &link, const QByteArray &bytes,
                         Clock::time_point time) = 0;
    /// The result of the exchange, in words.
    virtual void judged(const std::string &link, const std::string &verdict) = 0;
};

/// Calls every tap of one link. The taps are the caller's and outlive this object.
struct LineTaps {
    std::string link;
    std::vector<LineTap *> taps;

    void sent(const QByteArray &frame, Clock::time_point time) const;
    void received(const QByteArray &reply, Clock::time_point time) const;
    void dropped(const QByteArray &bytes, Clock::time_point time) const;
    void judged(const std::string &verdict) const;
};

} // namespace velko
