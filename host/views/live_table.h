// Shows values and stations on a terminal, as a table that is redrawn in place.
#pragma once

#include "host/core/events/event.h"
#include "host/core/session/snapshot.h"
#include "host/views/poll_view.h"

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

namespace velko
{

class LiveTable : public PollView
{
public:
    LiveTable();
    /// Restores the terminal.
    ~LiveTable() override;

    void show(const Snapshot &snapshot) override;
    void report(const Event &event) override;
    void note(const std::string &text) override;
    void leave() override;
    void finish(const Snapshot &snapshot) override;

private:
    void restoreTerminal();
    std::vector<std::string> linesOf(const Snapshot &snapshot, size_t rows, size_t columns) const;

    bool m_isShown = true;              // on the alternate screen
    std::deque<std::string> m_messages; // the latest ones
    int m_promptRow = 0;
};

} // namespace velko
