// Shows values, counters and events as JSON objects, one per line. docs/json.md describes them.
#pragma once

#include "host/core/events/event.h"
#include "host/core/line/line_times.h"
#include "host/core/session/snapshot.h"
#include "host/views/poll_view.h"

#include <QJsonObject>

#include <map>
#include <string>

namespace velko
{

class JsonView : public PollView
{
public:
    /// An unchanged value is repeated, and the counters are printed, at the first call of show()
    /// that comes at least `heartbeat` after the last time.
    explicit JsonView(milliseconds heartbeat) : m_heartbeat(heartbeat) {}

    void show(const Snapshot &snapshot) override;
    void report(const Event &event) override;
    void note(const std::string &text) override;
    void finish(const Snapshot &snapshot) override;

private:
    struct Shown {
        std::string content; // empty if it was not shown yet
        Clock::time_point time;
    };

    bool isDue(Clock::time_point last, Clock::time_point now) const;
    void showValue(const ValueRow &row, Clock::time_point now);
    static void showStations(const char *event, const Snapshot &snapshot);
    static void print(const char *event, const QJsonObject &object);

    const milliseconds m_heartbeat;
    std::map<std::string, Shown> m_shown; // by name
    Clock::time_point m_counted = Clock::now();
};

} // namespace velko
