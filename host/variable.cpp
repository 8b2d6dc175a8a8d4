#include "host/variable.h"

#include <QRegularExpression>
#include <QStringList>

#include <array>
#include <cstdio>
#include <stdexcept>

namespace
{

const int AREAS = 3;
const int LAST_REGISTER = 65535;
const int HOLDING_5000_OFFSET = 5000;
const int MAX_LENGTH = 1024;

enum Width { BIT, BYTE, WORD, DWORD };

Width widthOf(int kind)
{
    return static_cast<Width>(kind / AREAS);
}

int areaOf(int kind)
{
    return AREA_INPUT + kind % AREAS;
}

int numberOf(const QString &text, const char *what, int lowest, int highest)
{
    static const QRegularExpression decimal(QStringLiteral("^[0-9]{1,9}$"));
    const int number = text.toInt();
    if (!decimal.match(text).hasMatch() || number < lowest || number > highest)
        throw std::invalid_argument(std::string(what) + " \"" + text.toStdString()
                                    + "\" is not a number from " + std::to_string(lowest) + " to "
                                    + std::to_string(highest));
    return number;
}

// The driver reads a text that is no number as 0; a person who mistypes one wants to know.
void checkAddress(int kind, const QString &address)
{
    const bool isBit = widthOf(kind) == BIT;
    const QStringList numbers = isBit ? address.split(QLatin1Char('.')) : QStringList(address);
    if (isBit && numbers.size() != 2)
        throw std::invalid_argument("address \"" + address.toStdString()
                                    + "\" of a bit is not BYTE.BIT");
    for (const QString &number : numbers)
        numberOf(number, "address", 0, 2 * LAST_REGISTER + 1);
}

// The first unit, counted in units of its own width from the beginning of the area.
int firstUnit(const Variable &variable)
{
    const QString address = QString::fromStdString(variable.address);
    if (widthOf(variable.kind) != BIT)
        return address.toInt();
    return 8 * address.section('.', 0, 0).toInt() + address.section('.', 1).toInt();
}

// Beyond 65,535 the number wraps on the line, and another register would answer.
void checkRegisters(const Variable &variable)
{
    const RegisterSpan span = registersOf(variable);
    const int offset = span.area == AREA_HOLDING_5000 ? HOLDING_5000_OFFSET : 0;
    if (span.last + offset > LAST_REGISTER)
        throw std::invalid_argument("it ends at register " + std::to_string(span.last + offset)
                                    + ", and the last one is " + std::to_string(LAST_REGISTER));
}

Variable parse(const QStringList &parts)
{
    if (parts.size() < 2 || parts.size() > 3)
        throw std::invalid_argument("it is not KIND:ADDRESS or KIND:ADDRESS:LENGTH");
    Variable variable;
    variable.kind = numberOf(parts.at(0), "kind", 0, KIND_COUNT - 1);
    checkAddress(variable.kind, parts.at(1));
    variable.address = parts.at(1).toStdString();
    variable.length = parts.size() == 3 ? numberOf(parts.at(2), "length", 1, MAX_LENGTH) : 1;
    checkRegisters(variable);
    return variable;
}

// Double words are counted in words.
int unitCount(const Variable &variable)
{
    return widthOf(variable.kind) == DWORD ? (variable.length + 1) / 2 : variable.length;
}

std::string unitAddress(Width width, int unit)
{
    return width == BIT ? std::to_string(unit / 8) + "." + std::to_string(unit % 8)
                        : std::to_string(unit);
}

int unitBytes(Width width)
{
    return width == DWORD ? 4 : width == WORD ? 2 : 1;
}

std::string numberText(const QByteArray &bytes, Width width)
{
    std::array<char, 16> text;
    std::snprintf(text.data(), text.size(), "%0*X", width == BIT ? 1 : 2 * unitBytes(width),
                  numberIn(bytes, unitBytes(width)));
    return text.data();
}

} // namespace

Variable parseVariable(const std::string &text)
{
    try {
        return parse(QString::fromStdString(text).split(QLatin1Char(':')));
    } catch (const std::invalid_argument &error) {
        throw std::invalid_argument("variable \"" + text + "\": " + error.what());
    }
}

RegisterSpan registersOf(const Variable &variable)
{
    const int first = firstUnit(variable);
    const int last = first + unitCount(variable) - 1;
    const int area = areaOf(variable.kind);
    switch (widthOf(variable.kind)) {
    case BIT:
        return {area, first / 16, last / 16};
    case BYTE:
        return {area, first / 2, last / 2};
    case WORD:
        return {area, first, last};
    default:
        return {area, 2 * first, 2 * last + 1};
    }
}

uint32_t numberIn(const QByteArray &value, int count)
{
    uint32_t number = 0;
    for (int i = qMin(count, value.size()) - 1; i >= 0; --i)
        number = number << 8 | static_cast<unsigned char>(value.at(i));
    return number;
}

std::vector<Unit> unitsOf(const Variable &variable, const QByteArray &value)
{
    const Width width = widthOf(variable.kind);
    const int size = unitBytes(width);
    std::vector<Unit> units;
    units.reserve(static_cast<size_t>(unitCount(variable)));
    for (int i = 0; i < unitCount(variable); ++i)
        units.push_back({unitAddress(width, firstUnit(variable) + i),
                         numberText(value.mid(i * size, size), width)});
    return units;
}

std::string kindName(int kind)
{
    static const char *const areas[AREAS] = {"input", "holding", "holding 5000"};
    static const char *const widths[] = {"bit", "byte", "word", "double word"};
    return std::string(areas[kind % AREAS]) + " " + widths[widthOf(kind)];
}

bool isWritable(int kind)
{
    return areaOf(kind) != AREA_INPUT;
}

QList<VAR_ITEM> itemsOf(const std::vector<Variable> &variables)
{
    QList<VAR_ITEM> items;
    for (const Variable &variable : variables) {
        VAR_ITEM item;
        item.kind = static_cast<unsigned char>(variable.kind);
        item.addrText = QString::fromStdString(variable.address);
        item.length = variable.length;
        items.append(item);
    }
    return items;
}
