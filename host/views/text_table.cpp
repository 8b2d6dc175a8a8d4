#include "host/views/text_table.h"

#include "host/views/screen_text.h"

#include <algorithm>
#include <numeric>

namespace velko
{

std::vector<std::string> TextTable::lines(size_t width) const
{
    std::vector<size_t> widths(m_rows.front().size());
    for (const Row &row : m_rows)
        for (size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], widthOf(row.at(i)));
    const size_t cells = std::accumulate(widths.begin(), widths.end(), size_t{0});
    const size_t gap = cells + 2 * (widths.size() - 1) <= width ? 2 : 1;
    std::vector<std::string> lines;
    for (const Row &row : m_rows) {
        std::string line;
        for (size_t i = 0; i < widths.size(); ++i)
            line += padded(row[i], widths[i] + gap);
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(line);
    }
    return lines;
}

} // namespace velko
