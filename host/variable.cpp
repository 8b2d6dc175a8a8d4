#include "host/variable.h"

#include <QStringList>

#include <stdexcept>

namespace
{

const int AREAS = 3;

int numberOf(const QString &text, const char *what, int lowest, int highest)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < lowest || number > highest)
        throw std::invalid_argument(std::string(what) + " \"" + text.toStdString()
                                    + "\" is not a number from " + std::to_string(lowest) + " to "
                                    + std::to_string(highest));
    return number;
}

// The driver reads a text that is no number as 0; a person who mistypes one wants to know.
void checkAddress(int kind, const QString &address)
{
    const bool isBit = kind / AREAS == 0;
    const QStringList numbers = isBit ? address.split(QLatin1Char('.')) : QStringList(address);
    if (isBit && numbers.size() != 2)
        throw std::invalid_argument("address \"" + address.toStdString()
                                    + "\" of a bit is not BYTE.BIT");
    for (const QString &number : numbers)
        numberOf(number, "address", 0, 131071);
}

} // namespace

Variable parseVariable(const std::string &text)
{
    const QStringList parts = QString::fromStdString(text).split(QLatin1Char(':'));
    if (parts.size() < 2 || parts.size() > 3)
        throw std::invalid_argument("\"" + text + "\" is not KIND:ADDRESS or KIND:ADDRESS:LENGTH");
    Variable variable;
    variable.kind = numberOf(parts.at(0), "kind", 0, KIND_COUNT - 1);
    checkAddress(variable.kind, parts.at(1));
    variable.address = parts.at(1).toStdString();
    variable.length = parts.size() == 3 ? numberOf(parts.at(2), "length", 1, 1024) : 1;
    return variable;
}

std::string kindName(int kind)
{
    static const char *const areas[AREAS] = {"input", "holding", "holding 5000"};
    static const char *const widths[] = {"bit", "byte", "word", "double word"};
    return std::string(areas[kind % AREAS]) + " " + widths[kind / AREAS];
}

bool isWritable(int kind)
{
    return kind % AREAS != 0;
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

std::string hexOf(const QByteArray &bytes)
{
    return bytes.toHex(' ').toUpper().toStdString();
}
