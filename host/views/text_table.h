// Rows of text under aligned headings.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace velko
{

class TextTable
{
public:
    using Row = std::vector<std::string>;

    explicit TextTable(const Row &headings) : m_rows{headings} {}

    /// `row` has as many cells as there are headings.
    void add(const Row &row) { m_rows.push_back(row); }

    /// Returns the headings and the rows. Each column is as wide as its longest cell. If the
    /// columns do not fit into `width` characters, the space between them is smaller. Lines have no
    /// trailing spaces.
    std::vector<std::string> lines(size_t width = 1000) const;

private:
    std::vector<Row> m_rows;
};

/// Returns the approximate number of columns of a UTF-8 text on a terminal.
size_t widthOf(const std::string &text);

/// Returns at most `width` characters of the text. If it is longer, the last one is "~".
std::string leftOf(const std::string &text, size_t width);

/// Splits the text into pieces of at most `width` characters.
std::vector<std::string> wrapped(const std::string &text, size_t width);

} // namespace velko
