// The port of a link: opened, lost, and opened again when the device returns.
#pragma once

#include "host/core/events/reporter.h"
#include "host/core/line/byte_port.h"
#include "host/core/line/line_settings.h"
#include "host/core/line/line_tap.h"
#include "host/core/line/line_times.h"
#include "host/core/line/port_finder.h"
#include "host/core/line/serial_line.h"
#include "host/core/stations/growing_pause.h"
#include "host/core/status/link_status.h"
#include "velko_modbus_rtu.h"

#include <memory>
#include <optional>
#include <string>

namespace velko
{

/// Used on the communication thread.
class LinkPort
{
public:
    /// The arguments, except the first one, are the caller's and outlive this object.
    LinkPort(const PortOpener &opener, const LineTaps &taps, FrameJudge &judge, const ReadCut &cut,
             const Reporter &reporter, LinkStatus &status);

    /// Sets the settings for the next opening. Returns true if the port is open with other
    /// settings.
    bool setSettings(const LineSettings &settings);

    bool isOpen() const { return m_line != nullptr; }

    /// Opens the port and reports it. Throws PortError if that fails, and reports each new reason
    /// once.
    void open();

    /// Tries to open the port. Returns no value if it is open, otherwise the pause before the next
    /// attempt. The pauses grow.
    std::optional<milliseconds> reopen();

    /// Closes the open port after a failure and reports it. `why`: the reason.
    void lose(const std::string &why);

    /// Closes the port at the end. LinkStatus keeps its last state.
    void close();

    // The port must be open.

    /// As SerialLine::awaitFrameGap. Throws PortError.
    void awaitFrameGap();
    /// As SerialLine::listen. Throws PortError.
    void listen(milliseconds time);
    /// As SerialLine::exchange. Throws PortError.
    Exchange exchange(const Protocol &request, const ExchangeTimes &times);

private:
    const PortOpener m_opener;
    const LineTaps &m_taps;
    FrameJudge &m_judge;
    const ReadCut &m_cut;
    const Reporter &m_reporter;
    LinkStatus &m_status;
    LineSettings m_settings;
    AdapterIdentity m_adapter;          // of the last open port
    std::unique_ptr<SerialLine> m_line; // null while the port is closed
    GrowingPause m_pauses;
};

} // namespace velko
