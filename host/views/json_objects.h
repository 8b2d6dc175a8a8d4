// JSON objects that views and sub-commands print, one per line. docs/json.md describes them.
#pragma once

#include "host/core/session/snapshot.h"

#include <QJsonObject>
#include <QString>

#include <string>

namespace velko
{

/// Returns the fields of a "value" event: link, name, station, address, value and state; age, in
/// seconds, if the variable was ever read; reason, if there is one.
QJsonObject valueObject(const ValueRow &row);

/// Returns one line without its line feed: the object with "event".
std::string jsonLine(const char *event, QJsonObject object);

/// As jsonLine(), with the present time in UTC as "time".
std::string timedJsonLine(const char *event, QJsonObject object);

inline QString jsonText(const std::string &text)
{
    return QString::fromStdString(text);
}

/// Returns microseconds as milliseconds, or milliseconds as seconds.
inline double jsonThousandth(qint64 count)
{
    return static_cast<double>(count) / 1000;
}

} // namespace velko
