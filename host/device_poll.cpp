#include "host/device_poll.h"

#include "host/communication_loop.h"

#include <cstdio>

namespace
{

class DevicePoll
{
public:
    explicit DevicePoll(const PollSettings &settings)
        : m_settings(settings),
          m_driver(settings.library),
          m_line(settings.line),
          m_loop(m_driver, m_link, m_line)
    {
        m_link.maxRegs = settings.maxRegs;
        m_link.defaultStation = settings.station;
        m_link.retryLimit = settings.retryLimit;
        m_driver.SetComInfo(&m_link);
    }

    bool run()
    {
        try {
            poll();
        } catch (const std::exception &) {
            print(); // what was read before the port failed
            throw;
        }
        return print() && m_loop.counters().givenUp == 0;
    }

private:
    void poll()
    {
        const int milliseconds = m_settings.seconds * 1000;
        QElapsedTimer timer;
        timer.start();
        m_loop.readAll(m_settings.variables, milliseconds);
        while (!timer.hasExpired(milliseconds))
            m_loop.turn();
    }

    /// True when every variable was read.
    bool print() const
    {
        bool complete = true;
        for (const Variable &variable : m_settings.variables)
            complete = printVariable(variable) && complete;
        const LineCounters &counters = m_loop.counters();
        std::printf("%s\n", textOf(counters).c_str());
        if (counters.good == 0)
            std::printf(
                "Station %d never answered well: check its number, the baud rate, the parity "
                "and the wiring.\n",
                m_settings.station);
        return complete;
    }

    // What was never read would show as 0, which nobody could tell from a value.
    bool printVariable(const Variable &variable) const
    {
        const std::string refusal = m_loop.reads().refusalOf(registersOf(variable));
        if (!refusal.empty()) {
            printRow(variable, variable.address, "not read: " + refusal);
            return false;
        }
        QByteArray value;
        m_driver.GetRegisterData(0, variable.kind, QString::fromStdString(variable.address),
                                 m_settings.station, &value, variable.length);
        for (const Unit &unit : unitsOf(variable, value))
            printRow(variable, unit.address, unit.value);
        return true;
    }

    static void printRow(const Variable &variable, const std::string &address,
                         const std::string &text)
    {
        std::printf("  %-26s%-12s%s\n", kindName(variable.kind).c_str(), address.c_str(),
                    text.c_str());
    }

    const PollSettings &m_settings;
    ComInfo m_link;
    DriverLibrary m_driver;
    SerialLine m_line;
    CommunicationLoop m_loop;
};

} // namespace

bool pollDevice(const PollSettings &settings)
{
    return DevicePoll(settings).run();
}
