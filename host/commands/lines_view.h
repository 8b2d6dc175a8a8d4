// A line for each state that changes and, once a second at the most, each value; a summary at the end.
#pragma once

#include "host/commands/poll_view.h"

#include <chrono>
#include <map>

class LinesView : public PollView
{
public:
    void show(const Snapshot &snapshot) override;
    void tell(const Event &event) override;
    void note(const std::string &text) override;
    void finish(const Snapshot &snapshot) override;

private:
    struct Shown {
        std::string text;
        std::string state;
        std::chrono::steady_clock::time_point time;
    };

    std::map<std::string, Shown> m_shown; // by name
};

/// The summary, which other views end with as well.
std::vector<std::string> summaryOf(const Snapshot &snapshot);
