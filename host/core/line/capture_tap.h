// Writes the bytes on the line to a capture file for Wireshark and tshark.
#pragma once

#include "host/core/line/line_tap.h"

#include <QByteArray>

#include <pcap/pcap.h>

#include <memory>
#include <mutex>
#include <string>

namespace velko
{

/// Modbus RTU has no link type of its own, so the file has the first one for private use, 147. Options
/// for tshark:
///   -o 'uat:user_dlts:"User 0 (DLT=147)","mbrtu","0","","0",""'
class CaptureTap : public LineTap
{
public:
    /// Overwrites the file. Throws std::runtime_error.
    explicit CaptureTap(const std::string &path);

    void sent(const std::string &link, const QByteArray &frame, Clock::time_point time) override;
    void received(const std::string &link, const QByteArray &reply,
                  Clock::time_point time) override;
    void dropped(const std::string &link, const QByteArray &bytes, Clock::time_point time) override;
    /// Flushes the file.
    void judged(const std::string &link, const std::string &verdict) override;

    /// Flushes the file. Throws std::runtime_error if it is not complete. Any thread.
    void finish();

private:
    void write(const QByteArray &bytes, Clock::time_point time);

    std::string m_path;
    std::mutex m_mutex; // guards the file
    std::unique_ptr<pcap_t, decltype(&pcap_close)> m_format;
    std::unique_ptr<pcap_dumper_t, decltype(&pcap_dump_close)> m_file;
};

} // namespace velko
