#include "host/commands/tables.h"

#include <QString>

#include <algorithm>

std::vector<std::string> TextTable::lines() const
{
    std::vector<size_t> widths(m_rows.front().size());
    for (const Row &row : m_rows)
        for (size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], widthOf(row.at(i)));
    std::vector<std::string> lines;
    for (const Row &row : m_rows) {
        std::string line;
        for (size_t i = 0; i < widths.size(); ++i)
            line += row[i] + std::string(widths[i] - widthOf(row[i]) + 2, ' ');
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
    return QString::fromStdString(text).left(static_cast<int>(width)).toStdString();
}

// By hand: printf would write a comma in some countries.
std::string thousandths(long long number, int digits)
{
    const long long unit = digits == 1 ? 100 : 1;
    const long long rounded = (number + unit / 2) / unit;
    const long long whole = 1000 / unit;
    return std::to_string(rounded / whole) + "."
           + std::to_string(whole + rounded % whole).substr(1);
}
