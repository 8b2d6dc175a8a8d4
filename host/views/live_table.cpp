#include "host/views/live_table.h"

#include "host/views/screen_text.h"
#include "host/views/state_texts.h"
#include "host/views/summary.h"
#include "host/views/value_columns.h"

#include <QString>

#include <algorithm>
#include <cstdio>

namespace velko
{

namespace
{

// ANSI control sequences.
const char *const CLEAR_SCREEN = "\x1b[2J";
const char *const CLEAR_REST_OF_LINE = "\x1b[K";
const char *const HIDE_CURSOR = "\x1b[?25l";
const char *const SHOW_CURSOR = "\x1b[?25h";

const size_t MESSAGES_SHOWN = 5;
const size_t MESSAGES_KEPT = 100;
const size_t INPUT_LINES = 2;   // help and prompt
const size_t FEWEST_VALUES = 4; // lines of values, with the heading

// Moves the cursor. Rows and columns count from 1.
std::string positionAt(size_t row, size_t column)
{
    return "\x1b[" + std::to_string(row) + ";" + std::to_string(column) + "H";
}

void append(std::vector<std::string> &lines, const std::vector<std::string> &more)
{
    lines.insert(lines.end(), more.begin(), more.end());
}

// Leaves out what has no room, and says how much that is.
void cut(std::vector<std::string> &lines, size_t room)
{
    if (lines.size() <= room)
        return;
    const size_t hidden = lines.size() - room + 1;
    lines.resize(room);
    if (room > 0)
        lines.back() = "… " + std::to_string(hidden) + " more lines";
}

} // namespace

void LiveTable::leave()
{
    m_isLeft = true;
    m_terminal.leave();
}

void LiveTable::suspend()
{
    m_terminal.leave();
}

void LiveTable::resume()
{
    m_drawn.clear();
    if (m_terminal.isEntered() && m_terminal.isForeground())
        m_terminal.enter();
}

PollView::Typed LiveTable::type(const std::string &bytes)
{
    Typed typed;
    typed.lines = m_input.type(bytes);
    typed.isEnd = m_input.isEnd();
    return typed;
}

void LiveTable::report(const Event &event)
{
    note(textOf(event));
}

void LiveTable::note(const std::string &text)
{
    m_messages.push_back(timeText() + "  " + printable(text));
    if (m_messages.size() > MESSAGES_KEPT)
        m_messages.pop_front();
}

void LiveTable::finish(const Snapshot &snapshot)
{
    leave();
    for (const std::string &line : m_messages)
        std::printf("%s\n", line.c_str());
    std::printf("\n");
    for (const std::string &line : summaryOf(snapshot))
        std::printf("%s\n", line.c_str());
}

// In the background, the terminal shows what other programs print.
void LiveTable::show(const Snapshot &snapshot)
{
    if (m_isLeft || !m_terminal.isForeground())
        return;
    if (!m_terminal.isEntered()) {
        m_drawn.clear();
        m_terminal.enter();
    }
    const Terminal::Size size = Terminal::size();
    draw(screen(snapshot, size), size);
}

// If the terminal has too few rows, the tables of stations are cut first, and values can be
// scrolled.
LiveTable::Lines LiveTable::screen(const Snapshot &snapshot, Terminal::Size size)
{
    const size_t columns = size.columns - 1; // the last one would move the cursor to the next line
    const size_t room = size.rows - std::min(size.rows, INPUT_LINES);
    Lines tail = linkTables(snapshot, columns);
    const std::vector<const ValueRow *> rows = filtered(snapshot);
    const size_t values = std::min({rows.size() + 2, std::max(room / 2, FEWEST_VALUES), room});
    const Lines messages = messageLines(columns, room - values);
    cut(tail, room - values - messages.size());
    append(tail, messages);
    Lines lines = valueLines(rows, room - tail.size(), columns);
    append(lines, tail);
    lines.resize(room); // help and prompt keep their places
    lines.push_back(helpLine(columns));
    lines.push_back(promptLine(columns));
    for (std::string &line : lines)
        line = leftOf(line, columns);
    return lines;
}

std::vector<const ValueRow *> LiveTable::filtered(const Snapshot &snapshot) const
{
    const QString filter = QString::fromStdString(m_input.filter());
    std::vector<const ValueRow *> rows;
    for (const ValueRow &row : snapshot.values) {
        const auto contains = [&](const std::string &text) {
            return QString::fromStdString(text).contains(filter, Qt::CaseInsensitive);
        };
        if (filter.isEmpty() || contains(row.variable.name) || contains(placeOf(row.variable))
            || contains(stateText(row.state)))
            rows.push_back(&row);
    }
    return rows;
}

// The line below the rows says which ones these are, if not all of them have room.
LiveTable::Lines LiveTable::valueLines(const std::vector<const ValueRow *> &rows, size_t room,
                                       size_t columns)
{
    const Page whole = pageFrom(rows, 0, room, columns);
    if (whole.end == rows.size()) {
        m_input.top(0, whole.end);
        return whole.lines;
    }
    // A row may take several lines, so the last page begins somewhere among the last rows.
    size_t last = rows.size() - std::min(rows.size(), room - 2);
    while (last + 1 < rows.size() && pageFrom(rows, last, room - 1, columns).end < rows.size())
        ++last;
    const size_t top = m_input.top(last, room - 2);
    Page page = pageFrom(rows, top, room - 1, columns);
    page.lines.resize(room - 1);
    page.lines.push_back("values " + std::to_string(top + 1) + " to " + std::to_string(page.end)
                         + " of " + std::to_string(rows.size()));
    return page.lines;
}

// Always shows a part of the first row.
LiveTable::Page LiveTable::pageFrom(const std::vector<const ValueRow *> &rows, size_t top,
                                    size_t room, size_t columns)
{
    const auto begin = rows.begin() + static_cast<std::ptrdiff_t>(top);
    const size_t count = std::min(rows.size() - top, room);
    const std::vector<const ValueRow *> candidates(begin,
                                                   begin + static_cast<std::ptrdiff_t>(count));
    const ValueColumns table(candidates, columns);
    Page page = {{table.heading()}, top};
    for (const ValueRow *const row : candidates) {
        const Lines lines = table.lines(*row);
        if (page.lines.size() + lines.size() > room && page.end > top)
            break;
        append(page.lines, lines);
        ++page.end;
    }
    page.lines.resize(std::min(page.lines.size(), room));
    return page;
}

// If there are too few lines, the latest ones remain.
LiveTable::Lines LiveTable::messageLines(size_t columns, size_t room) const
{
    Lines lines;
    if (!m_messages.empty())
        lines.emplace_back();
    const size_t skipped = m_messages.size() - std::min(m_messages.size(), MESSAGES_SHOWN);
    for (size_t i = skipped; i < m_messages.size(); ++i)
        append(lines, wrapped(m_messages[i], columns));
    lines.erase(lines.begin(),
                lines.end() - static_cast<std::ptrdiff_t>(std::min(lines.size(), room)));
    return lines;
}

std::string LiveTable::helpLine(size_t columns) const
{
    std::string help = "Ctrl-C ends";
    if (!m_terminal.hasKeys())
        return help;
    if (m_input.isFiltering())
        return "Enter keeps the filter, Esc clears it";
    if (!m_input.filter().empty())
        help = "filter: " + printable(m_input.filter()) + "  Esc clears it  " + help;
    for (const char *const more : {"  / filters", "  arrows scroll", "  NAME=VALUE writes"})
        if (widthOf(help + more) <= columns)
            help += more;
    return help;
}

std::string LiveTable::promptLine(size_t columns) const
{
    if (!m_terminal.hasKeys())
        return std::string();
    const std::string prompt = m_input.isFiltering() ? "filter: " : "> ";
    const std::string typed = printable(m_input.isFiltering() ? m_input.filter() : m_input.line());
    return prompt + rightOf(typed, columns - prompt.size() - 1);
}

// Only lines that differ are sent. Afterwards the cursor is behind the typed text.
void LiveTable::draw(const Lines &lines, Terminal::Size size)
{
    if (m_input.takeRedraw() || !(size == m_size) || m_drawn.empty()) {
        m_drawn.clear();
        std::fputs(CLEAR_SCREEN, stdout);
    }
    m_size = size;
    std::fputs(HIDE_CURSOR, stdout);
    m_drawn.resize(lines.size());
    for (size_t i = 0; i < lines.size(); ++i)
        if (m_drawn[i] != lines[i])
            std::printf("%s%s%s", positionAt(i + 1, 1).c_str(), lines[i].c_str(),
                        CLEAR_REST_OF_LINE);
    m_drawn = lines;
    std::printf("%s%s", positionAt(lines.size(), widthOf(lines.back()) + 1).c_str(), SHOW_CURSOR);
    std::fflush(stdout);
}

} // namespace velko
