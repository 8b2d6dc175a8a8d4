#include "host/core/loop/link_port.h"

#include "host/core/line/port_error.h"
#include "host/core/text/joined.h"

namespace velko
{

namespace
{

// Between attempts to open a disconnected port.
const milliseconds FIRST_PAUSE(100);
const milliseconds PAUSE_STEP(200);
const milliseconds LONGEST_PAUSE(5000);

} // namespace

LinkPort::LinkPort(const PortOpener &opener, const LineTaps &taps, FrameJudge &judge,
                   const ReadCut &cut, const Reporter &reporter, LinkStatus &status)
    : m_opener(opener),
      m_taps(taps),
      m_judge(judge),
      m_cut(cut),
      m_reporter(reporter),
      m_status(status),
      m_pauses(FIRST_PAUSE, PAUSE_STEP, LONGEST_PAUSE)
{
}

bool LinkPort::setSettings(const LineSettings &settings)
{
    if (settings == m_settings)
        return false;
    m_settings = settings;
    m_adapter = AdapterIdentity();
    return isOpen();
}

void LinkPort::open()
{
    try {
        m_line = std::make_unique<SerialLine>(m_opener(m_settings, m_adapter), m_settings, m_taps,
                                              m_judge, m_cut);
    } catch (const PortError &error) {
        if (m_status.portText() != error.what())
            m_reporter.report(Event::PORT_MISSING, joined(m_settings.devices),
                              std::string(error.what()) + "; it is tried again");
        m_status.setPort(false, error.what());
        throw;
    }
    m_adapter = identityOf(m_line->device());
    m_pauses.restart();
    m_status.setPort(true, m_line->device());
    m_reporter.report(Event::PORT_OPEN, m_line->device(), std::string());
}

std::optional<milliseconds> LinkPort::reopen()
{
    try {
        open();
        return std::nullopt;
    } catch (const PortError &) {
        return m_pauses.next();
    }
}

void LinkPort::lose(const std::string &why)
{
    const std::string device = m_line->device();
    close();
    m_status.setPort(false, why);
    m_reporter.report(Event::PORT_LOST, device, why);
}

void LinkPort::close()
{
    m_line.reset();
}

void LinkPort::awaitFrameGap()
{
    m_line->awaitFrameGap();
}

void LinkPort::listen(milliseconds time)
{
    m_line->listen(time);
}

Exchange LinkPort::exchange(const Protocol &request, const ExchangeTimes &times)
{
    return m_line->exchange(request.frame, request.replyLen, times);
}

} // namespace velko
