#include "host/core/variables/variable.h"

#include "host/core/sizes/limits.h"
#include "host/core/sizes/units.h"
#include "host/core/text/numbers.h"
#include "host/core/variables/kinds.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <tuple>

namespace velko
{

namespace
{

std::vector<std::string> splitAt(const std::string &text, char separator)
{
    std::vector<std::string> parts;
    std::istringstream stream(text + separator);
    for (std::string part; std::getline(stream, part, separator);)
        parts.push_back(part);
    return parts;
}

// The driver reads a text that is not a number as 0, so a typing error must be found here.
void checkAddress(const Variable &variable)
{
    const bool isBit = widthOf(variable.kind) == WIDTH_BIT;
    const std::vector<std::string> numbers =
        isBit ? splitAt(variable.address, '.') : std::vector<std::string>{variable.address};
    if (isBit && numbers.size() != 2)
        throw std::invalid_argument("address \"" + variable.address
                                    + "\" is not BYTE.BIT, as kind \"" + kindName(variable.kind)
                                    + "\" requires");
    for (const std::string &number : numbers)
        parseNumber(number, 0, REGISTER_BYTES * (HIGHEST_REGISTER + 1) - 1, "address");
}

// In units of the kind, from the beginning of the area.
int firstUnit(const Variable &variable)
{
    if (widthOf(variable.kind) != WIDTH_BIT)
        return std::stoi(variable.address);
    const std::vector<std::string> numbers = splitAt(variable.address, '.');
    return BYTE_BITS * std::stoi(numbers.at(0)) + std::stoi(numbers.at(1));
}

// The length in units; a double word is one unit.
int unitCount(const Variable &variable)
{
    const int bits = variable.count * valueBits(variable.format);
    return (bits + unitBits(variable.kind) - 1) / unitBits(variable.kind);
}

int firstBit(const Variable &variable)
{
    return firstUnit(variable) * unitBits(variable.kind);
}

int lastBit(const Variable &variable)
{
    return firstBit(variable) + unitCount(variable) * unitBits(variable.kind) - 1;
}

// Above 65,535 the address wraps on the line, and the request would reach another register.
void checkRegisters(const Variable &variable)
{
    const RegisterSpan span = registersOf(variable);
    const int last = span.last + wireOffset(span.area);
    if (last > HIGHEST_REGISTER)
        throw std::invalid_argument("it ends at register address " + std::to_string(last)
                                    + "; the last one is " + std::to_string(HIGHEST_REGISTER));
}

bool isInRegisters(const Variable &variable)
{
    return widthOf(variable.kind) == WIDTH_WORD;
}

} // namespace

bool WriteTarget::operator<(const WriteTarget &other) const
{
    return std::tie(station, firstBit, bits) < std::tie(other.station, other.firstBit, other.bits);
}

void checkVariable(const Variable &variable)
{
    checkAddress(variable);
    if (!fits(variable.format, unitBits(variable.kind)))
        throw std::invalid_argument("format " + nameOf(variable.format) + " does not fit kind \""
                                    + kindName(variable.kind) + "\"");
    if (variable.count < 1 || variable.count > HIGHEST_COUNT)
        throw std::invalid_argument("count " + std::to_string(variable.count)
                                    + " is out of range: " + rangeText(1, HIGHEST_COUNT));
    if (variable.isWritten() && !isWritable(variable.kind))
        throw std::invalid_argument("kind \"" + kindName(variable.kind) + "\" cannot be written");
    checkRegisters(variable);
}

Format defaultFormat(int kind)
{
    static const char *const names[] = {"bit", "u8", "u16", "u32"};
    return parseFormat(names[widthOf(kind)]);
}

int lengthOf(const Variable &variable)
{
    return unitCount(variable) * (widthOf(variable.kind) == WIDTH_DWORD ? DWORD_REGISTERS : 1);
}

RegisterSpan registersOf(const Variable &variable)
{
    return {areaOf(variable.kind), firstBit(variable) / REGISTER_BITS,
            lastBit(variable) / REGISTER_BITS};
}

Variable parseVariable(const std::string &text, int station, Access access)
{
    try {
        const std::vector<std::string> parts = splitAt(text, ':');
        if (parts.size() < 2 || parts.size() > 4)
            throw std::invalid_argument("it is not KIND:ADDRESS[:FORMAT[:COUNT]]");
        Variable variable;
        variable.name = text;
        variable.station = station;
        variable.kind = parseKind(parts.at(0));
        variable.address = parts.at(1);
        variable.format =
            parts.size() > 2 ? parseFormat(parts.at(2)) : defaultFormat(variable.kind);
        variable.count = parts.size() > 3 ? parseNumber(parts.at(3), 1, HIGHEST_COUNT, "count") : 1;
        variable.access = access;
        checkVariable(variable);
        return variable;
    } catch (const std::invalid_argument &error) {
        throw std::invalid_argument("variable \"" + text + "\": " + error.what());
    }
}

std::string placeOf(const Variable &variable)
{
    return kindName(variable.kind) + " " + variable.address;
}

std::string textOf(const Variable &variable, const QByteArray &value)
{
    return textFrom(value, variable.format, variable.count, isInRegisters(variable));
}

QByteArray valueOf(const Variable &variable, const std::string &text)
{
    return bytesFrom(text, variable.format, variable.count, isInRegisters(variable));
}

std::vector<WriteTarget> targetsOf(const Variable &variable, int maxRegs)
{
    const int first = firstBit(variable) + REGISTER_BITS * wireOffset(areaOf(variable.kind));
    const int end = first + unitCount(variable) * unitBits(variable.kind);
    const bool isInWords = widthOf(variable.kind) >= WIDTH_WORD;
    const int step = isInWords ? REGISTER_BITS * maxRegs : unitBits(variable.kind);
    std::vector<WriteTarget> targets;
    for (int bit = first; bit < end; bit += step)
        targets.push_back({variable.station, bit, std::min(step, end - bit)});
    return targets;
}

QList<VAR_ITEM> itemsOf(const std::vector<Variable> &variables)
{
    QList<VAR_ITEM> items;
    for (const Variable &variable : variables) {
        if (!variable.isRead())
            continue;
        VAR_ITEM item;
        item.kind = static_cast<unsigned char>(variable.kind);
        item.addrText = QString::fromStdString(variable.address);
        item.varName = QString::fromStdString(variable.name);
        item.length = lengthOf(variable);
        items.append(item);
    }
    return items;
}

} // namespace velko
