#include "lists/decimal_number.h"

#include <QLocale>
#include <QtGlobal>

namespace
{

const int NOT_PLAIN = -1;
const int MAX_PLAIN_DIGITS = 9; // always fit an int

// A fast path. Nearly all addresses are a few plain digits, which mean the same in every locale. Qt
// needs hundreds of instructions for them in every call that reads or writes a value.
int plainNumber(const QString &text)
{
    if (text.isEmpty() || text.size() > MAX_PLAIN_DIGITS)
        return NOT_PLAIN;
    int number = 0;
    for (int i = 0; i < text.size(); ++i) {
        const int digit = text.at(i).unicode() - '0';
        if (digit < 0 || digit > 9)
            return NOT_PLAIN;
        number = 10 * number + digit;
    }
    return number;
}

} // namespace

int decimalNumber(const QString &text)
{
    const int plain = plainNumber(text);
    if (plain != NOT_PLAIN)
        return plain;
#if QT_VERSION < 0x050000
    return text.toInt();
#else
    // Since Qt 5, toInt() uses the "C" locale only. It comes first because it is faster and because
    // no locale reads such numbers differently.
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber)
        return number;
    QLocale locale;
    locale.setNumberOptions(QLocale::RejectGroupSeparator);
    return locale.toInt(text);
#endif
}
