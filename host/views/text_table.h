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

    /// Each column is as wide as its longest cell; lines have no trailing spaces. Columns move
    /// closer together if they do not fit into `width` characters.
    std::vector<std::string> lines(size_t width = 1000) const;

private:
    std::vector<Row> m_rows;
};

/// Approximate number of columns that a UTF-8 text takes on a terminal.
size_t widthOf(const std::string &text);

/// The first `width` characters; the last one is "~" if the text is longer.
std::string leftOf(const std::string &text, size_t width);

/// Splits the text into pieces of at most `width` characters.
std::vector<std::string> wrapped(const std::string &text, size_t width);

} // namespace velko
