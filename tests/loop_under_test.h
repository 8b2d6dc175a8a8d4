// A communication loop on the simulated stations 1, 2 and 3, in a time of its own.
#pragma once

#include "host/core/events/event.h"
#include "host/core/line/line_tap.h"
#include "host/core/line/line_times.h"
#include "host/core/line/replies.h"
#include "host/core/links/link.h"
#include "host/core/loop/communication_loop.h"
#include "host/core/stations/station_counters.h"
#include "host/core/status/link_status.h"
#include "host/core/variables/variable.h"
#include "host/plc/faults.h"
#include "host/plc/request_log.h"
#include "tests/virtual_plc.h"

#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace velko
{

inline SimulatedLineSettings threeStations()
{
    SimulatedLineSettings settings;
    settings.stations = {1, 2, 3};
    return settings;
}

class LoopUnderTest : public EventSink
{
public:
    LoopUnderTest() : replacedTime(std::in_place), plc(threeStations())
    {
        link.name = "line";
        link.line.devices = {"virtual"};
        link.line.baudRate = 115200;
        link.line.responseTimeout = 30;
        link.retries = 1;
    }

    /// "KIND:ADDRESS..." as in parseVariable.
    const Variable &add(const char *name, const char *place, int station = 1,
                        Access access = Access::READ)
    {
        Variable variable = parseVariable(place, station, access);
        variable.name = name;
        link.variables.push_back(variable);
        return link.variables.back();
    }

    const Variable &named(const std::string &name) const
    {
        for (const Variable &variable : link.variables)
            if (variable.name == name)
                return variable;
        throw std::out_of_range("there is no variable " + name);
    }

    void start()
    {
        loop = std::make_unique<CommunicationLoop>(DRIVER_LIBRARY, link,
                                                   RequestPlanner(DRIVER_LIBRARY).plan(link),
                                                   std::vector<LineTap *>(), *this, opener);
        loop->open();
    }

    template <typename Condition> bool turnUntil(const Condition &condition, int time = 3000)
    {
        const Clock::time_point end = Clock::now() + milliseconds(time);
        while (!condition() && Clock::now() < end)
            turn();
        return condition();
    }

    /// Lets time pass after a turn without a request.
    void turn()
    {
        const Clock::time_point begin = Clock::now();
        const milliseconds pause = loop->turn() ? milliseconds(1) : loop->idleTime();
        if (Clock::now() == begin)
            Clock::sleepUntil(begin + pause);
    }

    /// For what another thread brings about.
    template <typename Condition> static bool waitFor(const Condition &condition)
    {
        const Clock::time_point end = Clock::now() + milliseconds(10000);
        while (!condition() && Clock::now() < end)
            QThread::msleep(1);
        return condition();
    }

    void turnFor(int time)
    {
        turnUntil([] { return false; }, time);
    }

    bool readAll()
    {
        const auto before = loop->status().cycles();
        return turnUntil([&] { return loop->status().cycles() > before; });
    }

    void reload() { loop->load(link, RequestPlanner(DRIVER_LIBRARY).plan(link)); }

    void fault(const char *text)
    {
        const StationFault parsed = parseFault(text);
        plc.setFault(parsed.station, parsed.fault);
    }

    bool write(const char *name, const std::string &text)
    {
        return loop->write({named(name), text});
    }

    bool writeAll()
    {
        return turnUntil([this] { return !loop->hasPendingWrites(); }, 60000);
    }

    /// "good 38536"; "never read".
    std::string value(const char *name) const
    {
        const ValueState state = loop->status().stateOf(named(name));
        const std::string text =
            state.age ? " " + textOf(named(name), loop->value(named(name))) : "";
        const std::string reason =
            state.lastAttempt.text.empty() ? "" : ": " + state.lastAttempt.text;
        return nameOf(state.freshness) + text + reason;
    }

    StationCounters counters(int station) const
    {
        for (const StationStatus &status : loop->status().stations())
            if (status.station == station)
                return status.counters;
        return {};
    }

    int requestsTo(int station) const { return requestsTo(station, plc.requests()); }

    static int requestsTo(int station, const std::vector<SeenRequest> &seen)
    {
        return static_cast<int>(
            std::count_if(seen.begin(), seen.end(), [station](const SeenRequest &request) {
                return byteAt(request.frame, 0) == station;
            }));
    }

    void receive(const Event &event) override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const std::string value = kindOf(event.state) == Event::WRITE ? "=" + event.value : "";
        m_events[kindOf(event.state)] += event.name + value + " " + nameOf(event.state) + "\n";
    }

    std::string taken(Event::Kind kind)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::string events;
        events.swap(m_events[kind]);
        return events;
    }

    std::optional<ReplacedTime> replacedTime;
    VirtualPlc plc;
    PortOpener opener = plc.opener();
    Link link;
    std::unique_ptr<CommunicationLoop> loop;

private:
    std::mutex m_mutex;
    std::string m_events[3];
};

} // namespace velko

/// Makes tests of the files "*.loop"; false where there is none.
bool registerLoopCases();
