// Prints frames in hexadecimal, with times.
#pragma once

#include "host/core/line/line_tap.h"

#include <QByteArray>

#include <cstdio>
#include <mutex>
#include <string>

namespace velko
{

/// "12:00:01.123456 press -> 01 03 00 64 00 02 85 D4": -> sent, <- received, xx dropped,
/// == result.
class TraceTap : public LineTap
{
public:
    /// `stream` is the caller's and outlives the tap.
    explicit TraceTap(std::FILE *stream) : m_stream(stream) {}

    void sent(const std::string &link, const QByteArray &frame, Clock::time_point time) override;
    void received(const std::string &link, const QByteArray &reply,
                  Clock::time_point time) override;
    void dropped(const std::string &link, const QByteArray &bytes, Clock::time_point time) override;
    void judged(const std::string &link, const std::string &verdict) override;

private:
    void print(const std::string &link, const char *mark, const std::string &text,
               Clock::time_point time);

    std::mutex m_mutex; // one line at a time
    std::FILE *m_stream;
};

} // namespace velko
