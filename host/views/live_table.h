// Shows values and stations on a terminal, as a table that is redrawn in place.
#pragma once

#include "host/core/events/event.h"
#include "host/core/session/snapshot.h"
#include "host/views/poll_view.h"
#include "host/views/table_input.h"
#include "host/views/terminal.h"

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

namespace velko
{

/// If standard input is a terminal, it takes keys: they scroll, filter, and edit a line that is a
/// write.
class LiveTable : public PollView
{
public:
    void show(const Snapshot &snapshot) override;
    void report(const Event &event) override;
    void note(const std::string &text) override;
    bool takesKeys() const override { return m_terminal.hasKeys(); }
    Typed type(const std::string &bytes) override;
    void suspend() override;
    void resume() override;
    void leave() override;
    void finish(const Snapshot &snapshot) override;

private:
    using Lines = std::vector<std::string>;

    Lines screen(const Snapshot &snapshot, Terminal::Size size);
    struct Page {
        Lines lines;
        size_t end; // behind the last row that is shown
    };

    Lines valueLines(const std::vector<const ValueRow *> &rows, size_t room, size_t columns);
    static Page pageFrom(const std::vector<const ValueRow *> &rows, size_t top, size_t room,
                         size_t columns);
    Lines messageLines(size_t columns, size_t room) const;
    std::vector<const ValueRow *> filtered(const Snapshot &snapshot) const;
    std::string helpLine(size_t columns) const;
    std::string promptLine(size_t columns) const;
    void draw(const Lines &lines, Terminal::Size size);

    Terminal m_terminal;
    TableInput m_input;
    std::deque<std::string> m_messages; // the latest ones
    Terminal::Size m_size;              // as drawn
    Lines m_drawn;                      // empty: draw everything
    bool m_isLeft = false;
};

} // namespace velko
