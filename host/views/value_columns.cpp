#include "host/views/value_columns.h"

#include "host/views/screen_text.h"
#include "host/views/state_texts.h"

#include <algorithm>
#include <numeric>

namespace velko
{

namespace
{

// Columns that a cell gets before others are left out.
const size_t SHORTEST_NAME = 10;
const size_t LONG_VALUE = 24;
const size_t LONG_STATE = 28; // "station offline: no response"

} // namespace

ValueColumns::ValueColumns(const std::vector<const ValueRow *> &rows, size_t width)
{
    const Row titles = headings();
    for (size_t i = 0; i < COLUMNS; ++i)
        m_needed[i] = widthOf(titles[i]);
    for (const ValueRow *const row : rows) {
        const Row cells = cellsOf(*row);
        for (size_t i = 0; i < COLUMNS; ++i)
            m_needed[i] = std::max(m_needed[i], widthOf(cells[i]));
    }
    m_widths = m_needed;
    m_widths[NAME] = std::min(m_needed[NAME], SHORTEST_NAME);
    m_widths[VALUE] = std::min(m_needed[VALUE], LONG_VALUE);
    m_widths[STATE] = std::min(m_needed[STATE], LONG_STATE);
    for (const Column leftOut : {COLUMNS, ADDRESS, STATION, AGE}) {
        if (leftOut != COLUMNS)
            m_widths[leftOut] = 0;
        if (fit(width))
            return;
    }
    squeeze(width);
}

// False if the columns do not fit. Otherwise, the rest of the width goes to cells that need more.
bool ValueColumns::fit(size_t width)
{
    const size_t used = std::accumulate(m_widths.begin(), m_widths.end(), gaps());
    if (used > width)
        return false;
    size_t rest = width - used;
    for (const Column column : {NAME, VALUE, STATE}) {
        const size_t more = std::min(m_needed[column] - m_widths[column], rest);
        m_widths[column] += more;
        rest -= more;
    }
    m_gap = rest >= gaps() ? 2 : 1;
    return true;
}

// A terminal too narrow for name, value and state: the state gets what the value leaves.
void ValueColumns::squeeze(size_t width)
{
    const size_t third = std::max<size_t>(width / 3, 1);
    m_widths[NAME] = std::min(m_widths[NAME], third);
    const size_t rest = std::max(width, m_widths[NAME] + gaps() + 2) - m_widths[NAME] - gaps();
    m_widths[VALUE] = std::min(m_widths[VALUE], std::max<size_t>(rest / 2, 1));
    m_widths[STATE] = std::min(m_needed[STATE], rest - m_widths[VALUE]);
}

size_t ValueColumns::gaps() const
{
    const auto shown =
        std::count_if(m_widths.begin(), m_widths.end(), [](size_t w) { return w > 0; });
    return static_cast<size_t>(shown) - 1;
}

ValueColumns::Row ValueColumns::headings()
{
    return {"name", "station", "address", "value", "age", "state"};
}

ValueColumns::Row ValueColumns::cellsOf(const ValueRow &row)
{
    return {printable(row.variable.name), std::to_string(row.variable.station),
            placeOf(row.variable),        printable(row.text),
            ageText(row.state),           printable(stateText(row.state))};
}

std::string ValueColumns::heading() const
{
    Row cells = headings();
    for (size_t i = 0; i < COLUMNS; ++i)
        cells[i] = leftOf(cells[i], m_widths[i]);
    return line(cells);
}

std::vector<std::string> ValueColumns::lines(const ValueRow &row) const
{
    Row cells = cellsOf(row);
    const std::vector<std::string> values = wrapped(cells[VALUE], m_widths[VALUE]);
    const std::vector<std::string> states = wrapped(cells[STATE], m_widths[STATE]);
    cells[NAME] = shortened(cells[NAME], m_widths[NAME]);
    std::vector<std::string> lines;
    for (size_t i = 0; i < std::max(values.size(), states.size()); ++i) {
        cells[VALUE] = i < values.size() ? values[i] : "";
        cells[STATE] = i < states.size() ? states[i] : "";
        lines.push_back(line(cells));
        cells[NAME] = cells[STATION] = cells[ADDRESS] = cells[AGE] = "";
    }
    return lines;
}

std::string ValueColumns::line(const Row &cells) const
{
    std::string line;
    for (size_t i = 0; i < COLUMNS; ++i)
        if (m_widths[i] > 0)
            line += padded(cells[i], m_widths[i] + m_gap);
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

} // namespace velko
