// Decimal numbers in address texts.
#pragma once

#include <QString>

/// The number that a text stands for, as Qt 4's QString::toInt() reads it: in the application's
/// default locale (QLocale::setDefault) or, where that fails, in the "C" locale, and without group
/// separators. 0 for a text that is no number or does not fit 32 bits. Any thread, no lock.
int decimalNumber(const QString &text);
