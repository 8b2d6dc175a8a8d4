#include "host/views/text_table.h"

#include <QString>

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
            line += row[i] + std::string(widths[i] - widthOf(row[i]) + gap, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(line);
    }
    return lines;
}

size_t widthOf(const std::string &text)
{
    return static_cast<size_t>(QString::fromStdString(text).size());
}

std::string leftOf(const std::string &text, size_t width)
{
    if (widthOf(text) <= width)
        return text;
    return QString::fromStdString(text).left(static_cast<int>(width) - 1).toStdString() + "~";
}

std::vector<std::string> wrapped(const std::string &text, size_t width)
{
    const QString whole = QString::fromStdString(text);
    const int step = static_cast<int>(std::max<size_t>(width, 1));
    std::vector<std::string> pieces;
    for (int begin = 0; begin < whole.size(); begin += step)
        pieces.push_back(whole.mid(begin, step).toStdString());
    return pieces;
}

} // namespace velko
