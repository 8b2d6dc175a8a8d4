// The port of a link: opened, lost, and opened again as soon as it is there.
#pragma once

#include "host/core/events/reporter.h"
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

/// Communication thread.
class LinkPort
{
public:
    /// All outlive the port.
    LinkPort(const LineTaps &taps, const Reporter &reporter, LinkStatus &status);

    /// For the next opening. True if an open port has other settings.
    bool setSettings(const LineSettings &settings);

    bool isOpen() const { return m_line != nullptr; }

    /// Throws PortError; reports it once for each reason.
    void open();

    /// None: it is open. Otherwise the pause before the next attempt, which grows.
    std::optional<milliseconds> reopen();

    /// The port failed.
    void lose(const std::string &why);

    /// Closed on purpose: reports nothing.
    void close(const std::string &why);

    /// Of an open port; as SerialLine::exchange. Throws PortError.
    Exchange exchange(const Protocol &request);

private:
    const LineTaps &m_taps;
    const Reporter &m_reporter;
    LinkStatus &m_status;
    LineSettings m_settings;
    AdapterIdentity m_adapter;          // of the port that was open last
    std::unique_ptr<SerialLine> m_line; // null while there is no port
    GrowingPause m_pauses;
};

} // namespace velko
