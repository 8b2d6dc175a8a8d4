#include "host/views/screen_text.h"

#include <QString>
#include <QVector>

#include <algorithm>
#include <clocale>
#include <cwchar>

namespace velko
{

namespace
{

const char *const ELLIPSIS = "…";

struct Cell {
    uint character;
    size_t width;
};
using Cells = std::vector<Cell>;

// The C library knows the widths of all characters only in a UTF-8 locale, which the user may not
// have set.
class Widths
{
public:
    size_t of(uint character) const
    {
        if (m_locale == nullptr)
            return 1;
        const locale_t before = ::uselocale(m_locale);
        const int width = ::wcwidth(static_cast<wchar_t>(character));
        ::uselocale(before);
        return width < 0 ? 1 : static_cast<size_t>(width);
    }

private:
    locale_t m_locale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
};

bool isSimple(const std::string &text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

Cells cellsOf(const std::string &text)
{
    static const Widths widths; // never freed: the program needs it until its end
    Cells cells;
    cells.reserve(text.size());
    for (const uint character : QString::fromStdString(text).toUcs4()) {
        const bool isAscii = character < 0x7f;
        cells.push_back({character, isAscii ? 1 : widths.of(character)});
    }
    return cells;
}

std::string textOf(Cells::const_iterator begin, Cells::const_iterator end)
{
    QVector<uint> characters;
    for (; begin != end; ++begin)
        characters.append(begin->character);
    return QString::fromUcs4(characters.constData(), characters.size()).toStdString();
}

// The end of the longest run from `begin` that fits into `width`.
Cells::const_iterator endOfFit(Cells::const_iterator begin, Cells::const_iterator end, size_t width)
{
    size_t used = 0;
    while (begin != end && used + begin->width <= width)
        used += (begin++)->width;
    return begin;
}

// The begin of the longest run up to the end that fits into `width`.
Cells::const_iterator beginOfFit(const Cells &cells, size_t width)
{
    auto begin = cells.end();
    size_t used = 0;
    for (auto i = cells.end(); i != cells.begin();) {
        --i;
        used += i->width;
        if (used > width)
            break;
        if (i->width > 0) // not between a character and what combines with it
            begin = i;
    }
    return begin;
}

} // namespace

size_t widthOf(const std::string &text)
{
    if (isSimple(text))
        return text.size();
    size_t width = 0;
    for (const Cell &cell : cellsOf(text))
        width += cell.width;
    return width;
}

std::string leftOf(const std::string &text, size_t width)
{
    if (widthOf(text) <= width)
        return text;
    if (width == 0)
        return std::string();
    const Cells cells = cellsOf(text);
    return textOf(cells.begin(), endOfFit(cells.begin(), cells.end(), width - 1)) + ELLIPSIS;
}

std::string rightOf(const std::string &text, size_t width)
{
    if (widthOf(text) <= width)
        return text;
    if (width == 0)
        return std::string();
    const Cells cells = cellsOf(text);
    return ELLIPSIS + textOf(beginOfFit(cells, width - 1), cells.end());
}

std::string shortened(const std::string &text, size_t width)
{
    if (widthOf(text) <= width)
        return text;
    if (width == 0)
        return std::string();
    const Cells cells = cellsOf(text);
    const size_t right = (width - 1) / 2;
    return textOf(cells.begin(), endOfFit(cells.begin(), cells.end(), width - 1 - right)) + ELLIPSIS
           + textOf(beginOfFit(cells, right), cells.end());
}

std::string padded(const std::string &text, size_t width)
{
    const size_t used = widthOf(text);
    return used < width ? text + std::string(width - used, ' ') : text;
}

std::vector<std::string> wrapped(const std::string &text, size_t width)
{
    const Cells cells = cellsOf(text);
    std::vector<std::string> pieces;
    for (auto begin = cells.begin(); begin != cells.end();) {
        auto end = endOfFit(begin, cells.end(), width);
        if (end == begin)
            ++end; // a wide character in one column
        const auto isSpace = [](const Cell &cell) { return cell.character == ' '; };
        const auto space = std::find_if(std::make_reverse_iterator(end),
                                        std::make_reverse_iterator(begin), isSpace);
        if (end != cells.end() && !isSpace(*end) && space.base() != begin)
            end = space.base();
        pieces.push_back(textOf(begin, end));
        begin = end;
    }
    return pieces.empty() ? std::vector<std::string>{std::string()} : pieces;
}

std::string withoutLast(const std::string &text)
{
    Cells cells = cellsOf(text);
    while (!cells.empty() && cells.back().width == 0)
        cells.pop_back();
    if (!cells.empty())
        cells.pop_back();
    return textOf(cells.begin(), cells.end());
}

std::string printable(const std::string &text)
{
    if (isSimple(text))
        return text;
    Cells cells = cellsOf(text);
    for (Cell &cell : cells)
        if (cell.character < ' ' || (cell.character >= 0x7f && cell.character < 0xa0))
            cell.character = '?';
    return textOf(cells.begin(), cells.end());
}

} // namespace velko
