// A line for each state that changes and, once a second at the most, each value; a summary at the end.
#pragma once

#include "host/views/poll_view.h"

#include <chrono>
#include <map>

namespace velko
{

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

/// The values, under their headings. `width` as in TextTable.
std::vector<std::string> valueTable(const Snapshot &snapshot, size_t width);

/// For each link its name and its stations.
std::vector<std::string> linkTables(const Snapshot &snapshot, size_t width);

/// The tables, and what they say in words. Other views end with it as well.
std::vector<std::string> summaryOf(const Snapshot &snapshot);

} // namespace velko
