// Prints a line when the state of a value changes and, at most once per second, when the value
// changes. A change that came too early is printed when the second is over, with the newest value.
// Prints the rest of the changes and a summary at the end.
#pragma once

#include "host/core/events/event.h"
#include "host/core/session/snapshot.h"
#include "host/views/poll_view.h"

#include <chrono>
#include <map>
#include <string>

namespace velko
{

class LinesView : public PollView
{
public:
    void show(const Snapshot &snapshot) override;
    void report(const Event &event) override;
    void note(const std::string &text) override;
    void finish(const Snapshot &snapshot) override;

private:
    struct Shown {
        std::string text;
        std::string state;
        std::chrono::steady_clock::time_point time;
    };

    void showChanges(const Snapshot &snapshot, std::chrono::seconds shortestInterval);

    std::map<std::string, Shown> m_shown; // by name
};

} // namespace velko
