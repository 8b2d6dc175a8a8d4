// What is sent to a station: the driver's request, or a read that must come before it.
#pragma once

#include "host/core/line/line_times.h"
#include "host/core/line/serial_line.h"
#include "host/core/links/link.h"
#include "host/core/loop/link_port.h"
#include "host/core/plan/request_planner.h"
#include "host/core/stations/probe_schedule.h"
#include "host/core/trust/check_reads.h"
#include "host/core/trust/open_requests.h"
#include "velko_modbus_rtu.h"

#include <optional>
#include <vector>

namespace velko
{

/// Used on the communication thread.
class StationTalk
{
public:
    enum Kind { REQUEST, CHECK_READ, PROBE };

    /// One exchange. `request`: what was sent. Of a check read or a probe, only the frame, the
    /// response length and the station are set.
    struct Result {
        Kind kind = REQUEST;
        Protocol request;
        Exchange exchange;
        bool isGood = false; ///< the exchange has ended with a good response, not an exception
        bool isAnswered =
            false; ///< for a check read: its answer, or an exception response, has come
    };

    /// `port` and `open` are the caller's and outlive this object.
    StationTalk(LinkPort &port, OpenRequests &open) : m_port(port), m_open(open) {}

    /// Replaces stations, variables and settings. `link` is the caller's and must not change or end
    /// before the next call.
    void load(const Link &link, const std::vector<PlannedRequest> &plan);

    /// Sends the request to a station that is trusted, otherwise a check read. Throws PortError.
    Result ask(const Protocol &request);

    /// Sends the probe. Throws PortError.
    Result probe(const Probe &probe);

    /// What was sent last.
    Kind latestKind() const { return m_latestKind; }

private:
    bool needsOtherAnswer(const Protocol &request) const;
    Result exchange(Kind kind, const Protocol &request, const ExchangeTimes &times);
    static CheckReads::Result resultOf(const Protocol &check,
                                       const std::optional<ResponseShape> &latest);
    void awaitOldAnswers(int station);
    int guardTimeOf(int station) const;

    LinkPort &m_port;
    OpenRequests &m_open;
    CheckReads m_checks;
    const Link *m_link = nullptr;
    int m_checksInRow = 0;
    Kind m_latestKind = REQUEST;
};

} // namespace velko
