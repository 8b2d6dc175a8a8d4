// Observes a line. The trace and the capture file are taps.
#pragma once

#include <QByteArray>

#include <string>
#include <vector>

namespace velko
{

/// Called on the communication thread, immediately. Several lines may share one tap, so an
/// implementation has its own lock.
class LineTap
{
public:
    virtual ~LineTap() = default;
    virtual void sent(const std::string &link, const QByteArray &frame) = 0;
    virtual void received(const std::string &link, const QByteArray &reply) = 0;
    /// Bytes that do not belong to a response.
    virtual void dropped(const std::string &link, const QByteArray &bytes) = 0;
    /// The result of the exchange.
    virtual void judged(const std::string &link, const std::string &verdict) = 0;
};

/// The taps of one link. Each tap outlives this object.
struct LineTaps {
    std::string link;
    std::vector<LineTap *> taps;

    void sent(const QByteArray &frame) const;
    void received(const QByteArray &reply) const;
    void dropped(const QByteArray &bytes) const;
    void judged(const std::string &verdict) const;
};

} // namespace velko
