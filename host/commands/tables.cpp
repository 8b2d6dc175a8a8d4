#include "host/commands/tables.h"

#include <algorithm>
#include <array>
#include <cstdio>

std::vector<std::string> TextTable::lines() const
{
    std::vector<size_t> widths(m_rows.front().size());
    for (const Row &row : m_rows)
        for (size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], row.at(i).size());
    std::vector<std::string> lines;
    for (const Row &row : m_rows) {
        std::string line;
        for (size_t i = 0; i < widths.size(); ++i)
            line += row[i] + std::string(widths[i] - row[i].size() + 2, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(line);
    }
    return lines;
}

std::string thousandths(long long number)
{
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%.1f", static_cast<double>(number) / 1000);
    return text.data();
}
