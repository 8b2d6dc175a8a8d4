#include "host/views/live_table.h"

#include "host/views/state_texts.h"
#include "host/views/summary.h"
#include "host/views/text_table.h"

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace velko
{

namespace
{

// ANSI control sequences.
const char *const ALTERNATE_SCREEN = "\x1b[?1049h\x1b[2J";
const char *const MAIN_SCREEN = "\x1b[?1049l";
const char *const SAVE_CURSOR = "\x1b[s\x1b[?25l";
const char *const RESTORE_CURSOR = "\x1b[u\x1b[?25h";
const char *const HOME = "\x1b[H";
const char *const CLEAR_REST_OF_LINE = "\x1b[K";

const size_t MESSAGES_SHOWN = 5;
const size_t MESSAGES_KEPT = 100;

struct TerminalSize {
    size_t rows = 24;
    size_t columns = 80;
};

TerminalSize terminalSize()
{
    winsize size = {};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row < 4 || size.ws_col < 10)
        return {};
    return {size.ws_row, size.ws_col};
}

} // namespace

LiveTable::LiveTable()
{
    std::fputs(ALTERNATE_SCREEN, stdout);
}

LiveTable::~LiveTable()
{
    restoreTerminal();
}

// Restores the terminal before the last exchange ends, because a second Ctrl-C may end the program
// until then.
void LiveTable::leave()
{
    restoreTerminal();
}

void LiveTable::restoreTerminal()
{
    if (!m_isShown)
        return;
    m_isShown = false;
    std::fputs(MAIN_SCREEN, stdout);
    std::fflush(stdout);
    if (::isatty(STDIN_FILENO) != 0)
        ::tcflush(STDIN_FILENO, TCIFLUSH); // the shell must not get an unfinished line
}

void LiveTable::report(const Event &event)
{
    note(textOf(event));
}

void LiveTable::note(const std::string &text)
{
    m_messages.push_back(timeText() + "  " + text);
    if (m_messages.size() > MESSAGES_KEPT)
        m_messages.pop_front();
    m_promptRow = 0; // the user may have typed a line: the prompt is redrawn
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

// If the terminal has too few rows, values are omitted first.
std::vector<std::string> LiveTable::linesOf(const Snapshot &snapshot, size_t rows,
                                            size_t columns) const
{
    std::vector<std::string> tail = linkTables(snapshot, columns);
    tail.emplace_back();
    const size_t skipped = m_messages.size() - std::min(m_messages.size(), MESSAGES_SHOWN);
    for (size_t i = skipped; i < m_messages.size(); ++i)
        for (const std::string &line : wrapped(m_messages[i], columns))
            tail.push_back(line);
    std::vector<std::string> lines = valueTable(snapshot, columns);
    const size_t room = rows > tail.size() + 3 ? rows - tail.size() : 3;
    if (lines.size() > room) {
        const size_t hidden = lines.size() - room + 1;
        lines.resize(room - 1);
        lines.push_back("... " + std::to_string(hidden) + " more values");
    }
    lines.insert(lines.end(), tail.begin(), tail.end());
    lines.resize(std::min(lines.size(), rows));
    return lines;
}

// After each redraw the cursor returns to the line that the user types.
void LiveTable::show(const Snapshot &snapshot)
{
    const TerminalSize size = terminalSize();
    const std::vector<std::string> lines = linesOf(snapshot, size.rows - 2, size.columns - 1);
    std::fputs(SAVE_CURSOR, stdout);
    std::fputs(HOME, stdout);
    for (const std::string &line : lines)
        std::printf("%s%s\n", leftOf(line, size.columns - 1).c_str(), CLEAR_REST_OF_LINE);
    const int promptRow = static_cast<int>(lines.size()) + 1;
    if (promptRow != m_promptRow)
        std::printf("\x1b[J\x1b[%d;1HNAME=VALUE to write, Ctrl-C to end: \x1b[s", promptRow);
    m_promptRow = promptRow;
    std::fputs(RESTORE_CURSOR, stdout);
    std::fflush(stdout);
}

} // namespace velko
