#include "host/views/table_input.h"

#include "host/core/text/assignment.h"
#include "host/views/screen_text.h"

#include <algorithm>

namespace velko
{

namespace
{

const size_t LONGEST_LINE = 10000; // bytes: any value fits
const size_t LONGEST_FILTER = 1000;

} // namespace

std::vector<std::string> TableInput::type(const std::string &bytes)
{
    std::vector<std::string> lines;
    for (const Key &key : bytes.empty() ? m_keys.settle() : m_keys.read(bytes))
        press(key, lines);
    return lines;
}

bool TableInput::takeRedraw()
{
    const bool isRedraw = m_isRedraw;
    m_isRedraw = false;
    return isRedraw;
}

size_t TableInput::top(size_t last, size_t page)
{
    m_last = last;
    m_page = std::max<size_t>(page, 1);
    m_top = std::min(m_top, last);
    return m_top;
}

void TableInput::press(const Key &key, std::vector<std::string> &lines)
{
    if (scroll(key.kind))
        return;
    switch (key.kind) {
    case Key::CHARACTER:
        return insert(key.text);
    case Key::ENTER:
        return pressEnter(lines);
    case Key::ESCAPE:
        return pressEscape();
    case Key::BACKSPACE:
        if (text().empty())
            m_isFiltering = false;
        text() = withoutLast(text());
        return;
    case Key::CLEAR_LINE:
        text().clear();
        return;
    case Key::END_OF_INPUT:
        m_isEnd = m_isEnd || text().empty();
        return;
    default:
        m_isRedraw = true;
    }
}

void TableInput::pressEnter(std::vector<std::string> &lines)
{
    if (m_isFiltering) {
        m_isFiltering = false;
        return;
    }
    const std::string line = trimmed(m_line);
    if (!line.empty())
        lines.push_back(line);
    m_line.clear();
}

// Clears what was typed, or the filter if nothing was.
void TableInput::pressEscape()
{
    if (m_isFiltering || m_line.empty())
        m_filter.clear();
    m_isFiltering = false;
    m_line.clear();
}

// "/" within a line belongs to a name or a value.
void TableInput::insert(const std::string &character)
{
    if (!m_isFiltering && m_line.empty() && character == "/") {
        m_isFiltering = true;
        m_filter.clear();
        return;
    }
    const size_t longest = m_isFiltering ? LONGEST_FILTER : LONGEST_LINE;
    if (text().size() + character.size() <= longest)
        text() += character;
    if (m_isFiltering)
        m_top = 0;
}

bool TableInput::scroll(Key::Kind kind)
{
    switch (kind) {
    case Key::UP:
        m_top -= std::min<size_t>(m_top, 1);
        return true;
    case Key::DOWN:
        m_top = std::min(m_top + 1, m_last);
        return true;
    case Key::PAGE_UP:
        m_top -= std::min(m_top, m_page);
        return true;
    case Key::PAGE_DOWN:
        m_top = std::min(m_top + m_page, m_last);
        return true;
    case Key::HOME:
        m_top = 0;
        return true;
    case Key::END:
        m_top = m_last;
        return true;
    default:
        return false;
    }
}

} // namespace velko
