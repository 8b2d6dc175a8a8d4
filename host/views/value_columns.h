// The columns of the table of values in a terminal of a certain width.
#pragma once

#include "host/core/session/snapshot.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace velko
{

/// If not everything fits, names are shortened, then the columns for the address, the station and
/// the age are left out. Values and states are never cut: a long one continues on the next line.
class ValueColumns
{
public:
    /// `rows` are the rows that may be shown. `width`: columns of the terminal.
    ValueColumns(const std::vector<const ValueRow *> &rows, size_t width);

    std::string heading() const;
    /// Returns the lines of a row, at least one. None is longer than the terminal is wide, and none
    /// has trailing spaces.
    std::vector<std::string> lines(const ValueRow &row) const;

private:
    enum Column { NAME, STATION, ADDRESS, VALUE, AGE, STATE, COLUMNS };
    using Row = std::array<std::string, COLUMNS>;

    static Row cellsOf(const ValueRow &row);
    static Row headings();
    bool fit(size_t width);
    void squeeze(size_t width);
    size_t gaps() const;
    std::string line(const Row &cells) const;

    std::array<size_t, COLUMNS> m_needed{}; // by the longest cell
    std::array<size_t, COLUMNS> m_widths{}; // 0: left out
    size_t m_gap = 1;
};

} // namespace velko
