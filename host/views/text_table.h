// Rows of text under aligned headings.
#pragma once

#include <string>
#include <vector>

namespace velko
{

class TextTable
{
public:
    using Row = std::vector<std::string>;

    explicit TextTable(const Row &headings) : m_rows{headings} {}

    /// As many cells as there are headings.
    void add(const Row &row) { m_rows.push_back(row); }

    /// Each column as wide as its longest cell; no space at the end of a line. Columns stand closer
    /// where they would not fit into `width` characters otherwise.
    std::vector<std::string> lines(size_t width = 1000) const;

private:
    std::vector<Row> m_rows;
};

/// Characters that a UTF-8 text takes on a terminal, near enough.
size_t widthOf(const std::string &text);

/// Its first characters, the last one "~" where some are missing.
std::string leftOf(const std::string &text, size_t width);

/// In pieces of so many characters at the most.
std::vector<std::string> wrapped(const std::string &text, size_t width);

} // namespace velko
