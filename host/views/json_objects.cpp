#include "host/views/json_objects.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

#include <sstream>
#include <utility>

namespace velko
{

namespace
{

// JSON has no infinity and no "nan": they remain texts.
QJsonValue numberOrText(const std::string &word)
{
    bool isNumber = false;
    const double number = jsonText(word).toDouble(&isNumber);
    return isNumber && qIsFinite(number) ? QJsonValue(number) : QJsonValue(jsonText(word));
}

QJsonValue valueOf(const ValueRow &row)
{
    if (!row.state.age)
        return QJsonValue::Null;
    if (row.variable.format.type == Format::TEXT)
        return jsonText(row.text);
    if (row.variable.count == 1)
        return numberOrText(row.text);
    QJsonArray values;
    std::istringstream words(row.text);
    for (std::string word; words >> word;)
        values.append(numberOrText(word));
    return values;
}

} // namespace

QJsonObject valueObject(const ValueRow &row)
{
    QJsonObject object{
        {"link", jsonText(row.link)},      {"name", jsonText(row.variable.name)},
        {"station", row.variable.station}, {"address", jsonText(placeOf(row.variable))},
        {"value", valueOf(row)},           {"state", nameOf(row.state.freshness)}};
    if (row.state.age)
        object["age"] = jsonThousandth(row.state.age->count());
    if (!row.state.lastAttempt.text.empty())
        object["reason"] = jsonText(row.state.lastAttempt.text);
    return object;
}

std::string jsonLine(const char *event, QJsonObject object)
{
    object["event"] = event;
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

std::string timedJsonLine(const char *event, QJsonObject object)
{
    object["time"] = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
    return jsonLine(event, std::move(object));
}

} // namespace velko
