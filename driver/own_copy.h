// Copies of what a host hands in. A host may make its texts and arrays with fromRawData() and use the
// memory behind them again as soon as the call has returned, so a shared handle is not a copy.
#pragma once

#include "driver/records.h"

/// Both share no byte with their argument. Null stays null.
inline QString ownText(const QString &text)
{
    return text.isEmpty() ? text : QString(text.constData(), text.size());
}

inline QByteArray ownBytes(const QByteArray &bytes)
{
    return bytes.isEmpty() ? bytes : QByteArray(bytes.constData(), bytes.size());
}

/// A copy of the record that may be kept beyond the call.
inline RW_VAR ownRecord(const RW_VAR &record)
{
    RW_VAR own = record;
    own.varName = ownText(record.varName);
    own.addrText = ownText(record.addrText);
    own.value = ownBytes(record.value);
    return own;
}
