// What the user types while the table is shown: a line, a filter, and keys that scroll.
#pragma once

#include "host/views/keys.h"

#include <cstddef>
#include <string>
#include <vector>

namespace velko
{

class TableInput
{
public:
    /// Takes bytes of the keyboard. Returns the lines that Enter has completed, without blanks at
    /// their ends; none is empty. An empty `bytes` says that no key was pressed for some time.
    std::vector<std::string> type(const std::string &bytes);

    /// True once Ctrl-D was pressed on an empty line.
    bool isEnd() const { return m_isEnd; }

    /// Returns true once after Ctrl-L.
    bool takeRedraw();

    /// True while the filter is typed.
    bool isFiltering() const { return m_isFiltering; }
    /// The text of which a row contains a part; empty: all rows.
    const std::string &filter() const { return m_filter; }
    /// The line that is typed.
    const std::string &line() const { return m_line; }

    /// The first row to show, at most `last`. `page`: rows of a page.
    size_t top(size_t last, size_t page);

private:
    void press(const Key &key, std::vector<std::string> &lines);
    void pressEnter(std::vector<std::string> &lines);
    void pressEscape();
    void insert(const std::string &character);
    bool scroll(Key::Kind kind);
    std::string &text() { return m_isFiltering ? m_filter : m_line; }

    KeyReader m_keys;
    std::string m_line;
    std::string m_filter;
    bool m_isFiltering = false;
    bool m_isEnd = false;
    bool m_isRedraw = false;
    size_t m_top = 0;
    size_t m_last = 0; // as of the latest call of top()
    size_t m_page = 1;
};

} // namespace velko
