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

} // namespace velko
