#include "host/core/line/capture_tap.h"

#include <stdexcept>

namespace velko
{

namespace
{

const int LINK_TYPE = 147;        // the first one for private use
const int LONGEST_RECORD = 65535; // bytes
const int MICROSECONDS = 1000000; // of a second

} // namespace

CaptureTap::CaptureTap(const std::string &path)
    : m_path(path),
      m_format(pcap_open_dead(LINK_TYPE, LONGEST_RECORD), pcap_close),
      m_file(pcap_dump_open(m_format.get(), path.c_str()), pcap_dump_close)
{
    if (!m_file)
        throw std::runtime_error("cannot write the capture file: "
                                 + std::string(pcap_geterr(m_format.get())));
}

void CaptureTap::sent(const std::string &, const QByteArray &frame, Clock::time_point time)
{
    write(frame, time);
}

void CaptureTap::received(const std::string &, const QByteArray &reply, Clock::time_point time)
{
    write(reply, time);
}

void CaptureTap::dropped(const std::string &, const QByteArray &bytes, Clock::time_point time)
{
    write(bytes, time);
}

void CaptureTap::judged(const std::string &, const std::string &)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    pcap_dump_flush(m_file.get());
}

void CaptureTap::finish()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (pcap_dump_flush(m_file.get()) != 0 || std::ferror(pcap_dump_file(m_file.get())) != 0)
        throw std::runtime_error("the capture file " + m_path + " is not complete: writing failed");
}

void CaptureTap::write(const QByteArray &bytes, Clock::time_point time)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    pcap_pkthdr header = {};
    const auto stamp = wallClockTime(time).count();
    header.ts.tv_sec = static_cast<time_t>(stamp / MICROSECONDS);
    header.ts.tv_usec = static_cast<suseconds_t>(stamp % MICROSECONDS);
    header.len = header.caplen = static_cast<bpf_u_int32>(bytes.size());
    pcap_dump(reinterpret_cast<u_char *>(m_file.get()), &header,
              reinterpret_cast<const u_char *>(bytes.constData()));
}

} // namespace velko
