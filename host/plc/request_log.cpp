#include "host/plc/request_log.h"

namespace velko
{

uint64_t RequestLog::add(Clock::time_point arrival, const QByteArray &frame)
{
    if (m_requests.size() == MAX_REQUESTS) {
        m_requests.pop_front();
        ++m_removed;
    }
    m_requests.push_back({arrival, Clock::now(), frame});
    return m_removed + m_requests.size() - 1;
}

void RequestLog::noteEnd(uint64_t entry)
{
    if (entry >= m_removed)
        m_requests[static_cast<size_t>(entry - m_removed)].end = Clock::now();
}

} // namespace velko
