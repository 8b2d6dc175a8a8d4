#include "lists/decimal_number.h"

#include <QLocale>
#include <QtGlobal>

int decimalNumber(const QString &text)
{
#if QT_VERSION < 0x050000
    return text.toInt();
#else
    // Since Qt 5 toInt() knows the "C" locale only. It comes first here, since it is the faster one
    // and no locale reads its numbers in another way.
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber)
        return number;
    QLocale locale;
    locale.setNumberOptions(QLocale::RejectGroupSeparator);
    return locale.toInt(text);
#endif
}
