// Deep copies of the texts and arrays that a host passes. A host may create them with fromRawData()
// and reuse their memory as soon as the call has returned, so a shared handle is not enough.
#pragma once

#include "velko_modbus_rtu.h"

#include <QByteArray>
#include <QString>

/// Both return a copy that shares no byte with the argument. Null stays null.
inline QString ownText(const QString &text)
{
    return text.isNull() ? QString() : QString(text.constData(), text.size());
}

inline QByteArray ownBytes(const QByteArray &bytes)
{
    return bytes.isNull() ? QByteArray() : QByteArray(bytes.constData(), bytes.size());
}

/// Returns a copy of the record that may be kept after the call.
inline RW_VAR ownRecord(const RW_VAR &record)
{
    RW_VAR own = record;
    own.varName = ownText(record.varName);
    own.addrText = ownText(record.addrText);
    own.value = ownBytes(record.value);
    return own;
}
