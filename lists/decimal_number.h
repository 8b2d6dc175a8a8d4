// Decimal numbers in address texts.
#pragma once

#include <QString>

/// Converts a text as Qt 4's QString::toInt() does: in the application's default locale
/// (QLocale::setDefault) or, if that fails, in the "C" locale, and without group separators.
/// Returns 0 if the text is not a number or does not fit 32 bits. Any thread, no lock.
int decimalNumber(const QString &text);
