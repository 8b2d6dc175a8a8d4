#include "host/views/json_view.h"

#include "host/views/state_texts.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>
#include <sstream>

namespace velko
{

namespace
{

QString text(const std::string &characters)
{
    return QString::fromStdString(characters);
}

QJsonValue numberOrText(const std::string &word)
{
    bool isNumber = false;
    const double number = text(word).toDouble(&isNumber);
    return isNumber && qIsFinite(number) ? QJsonValue(number) : QJsonValue(text(word));
}

QJsonValue valueOf(const ValueRow &row)
{
    if (!row.state.age)
        return QJsonValue::Null;
    if (row.variable.format.type == Format::TEXT)
        return text(row.text);
    if (row.variable.count == 1)
        return numberOrText(row.text);
    QJsonArray values;
    std::istringstream words(row.text);
    for (std::string word; words >> word;)
        values.append(numberOrText(word));
    return values;
}

QJsonObject stationObject(const LinkRow &link, const StationStatus &status)
{
    const StationCounters &counters = status.counters;
    QJsonObject exceptions;
    for (const auto &[code, count] : counters.exceptions)
        exceptions[QString::number(code)] = qint64{count};
    return {{"link", text(link.name)},
            {"station", status.station},
            {"online", status.isOnline},
            {"sent", qint64{counters.sent}},
            {"good", qint64{counters.good}},
            {"noReply", qint64{counters.noReply}},
            {"badCrc", qint64{counters.badCrc}},
            {"wrongLength", qint64{counters.wrongLength}},
            {"collisions", qint64{counters.collisions}},
            {"exceptions", exceptions},
            {"retries", qint64{counters.retries}},
            {"givenUp", qint64{counters.givenUp}},
            {"meanResponseMs", static_cast<double>(counters.meanResponse().count()) / 1000},
            {"worstResponseMs", static_cast<double>(counters.worstResponse.count()) / 1000}};
}

} // namespace

void JsonView::show(const Snapshot &snapshot)
{
    for (const ValueRow &row : snapshot.values) {
        if (!isTried(row))
            continue;
        const std::string state = row.text + stateText(row.state);
        std::string &shown = m_shown[row.variable.name];
        if (shown == state)
            continue;
        shown = state;
        QJsonObject object{{"name", text(row.variable.name)},
                           {"station", row.variable.station},
                           {"address", text(placeOf(row.variable))},
                           {"value", valueOf(row)},
                           {"state", nameOf(row.state.freshness)}};
        if (row.state.age)
            object["age"] = static_cast<double>(row.state.age->count()) / 1000;
        if (!row.state.lastAttempt.text.empty())
            object["reason"] = text(row.state.lastAttempt.text);
        print("value", object);
    }
}

void JsonView::report(const Event &event)
{
    QJsonObject object{
        {"link", text(event.link)}, {"name", text(event.name)}, {"state", nameOf(event.state)}};
    if (kindOf(event.state) == Event::WRITE)
        object["value"] = text(event.value);
    if (!event.detail.empty())
        object["reason"] = text(event.detail);
    static const char *const kinds[] = {"write", "station", "port"};
    print(kinds[kindOf(event.state)], object);
}

void JsonView::note(const std::string &message)
{
    print("note", {{"text", text(message)}});
}

void JsonView::finish(const Snapshot &snapshot)
{
    show(snapshot);
    for (const LinkRow &link : snapshot.links)
        for (const StationStatus &status : link.stations)
            print("summary", stationObject(link, status));
}

void JsonView::print(const char *event, QJsonObject object)
{
    object["event"] = event;
    object["time"] = QDateTime::currentDateTime().toString(Qt::ISODateWithMs);
    std::printf("%s\n", QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

} // namespace velko
