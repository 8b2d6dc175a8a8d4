// The values and stations as a table on a terminal, drawn anew in its place.
#pragma once

#include "host/views/poll_view.h"

#include <deque>
#include <string>
#include <vector>

namespace velko
{

class LiveTable : public PollView
{
public:
    LiveTable();
    /// Gives the terminal back.
    ~LiveTable() override;

    void show(const Snapshot &snapshot) override;
    void tell(const Event &event) override;
    void note(const std::string &text) override;
    void leave() override;
    void finish(const Snapshot &snapshot) override;

private:
    void giveTerminalBack();
    std::vector<std::string> linesOf(const Snapshot &snapshot, size_t rows, size_t columns) const;

    bool m_isShown = true;          // on a screen of its own
    std::deque<std::string> m_news; // the latest
    int m_promptRow = 0;
};

} // namespace velko
