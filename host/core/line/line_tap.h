// Looks on at a line: the trace and the capture file are taps.
#pragma once

#include <QByteArray>

#include <string>
#include <vector>

namespace velko
{

/// Called on the communication thread at the moment itself. Several lines may share one tap, so an
/// implementation takes a lock of its own.
class LineTap
{
public:
    virtual ~LineTap() = default;
    virtual void sent(const std::string &link, const QByteArray &frame) = 0;
    virtual void received(const std::string &link, const QByteArray &reply) = 0;
    /// Bytes that are no part of an answer.
    virtual void dropped(const std::string &link, const QByteArray &bytes) = 0;
    /// What became of the exchange.
    virtual void judged(const std::string &link, const std::string &verdict) = 0;
};

/// The taps of one link; each is the caller's and outlives this.
struct LineTaps {
    std::string link;
    std::vector<LineTap *> taps;

    void sent(const QByteArray &frame) const;
    void received(const QByteArray &reply) const;
    void dropped(const QByteArray &bytes) const;
    void judged(const std::string &verdict) const;
};

} // namespace velko
