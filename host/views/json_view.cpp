#include "host/views/json_view.h"

#include "host/views/json_objects.h"
#include "host/views/state_texts.h"

#include <cstdio>

namespace velko
{

namespace
{

QJsonObject stationObject(const LinkRow &link, const StationStatus &status)
{
    const StationCounters &counters = status.counters;
    QJsonObject exceptions;
    for (const auto &[code, count] : counters.exceptions)
        exceptions[QString::number(code)] = qint64{count};
    return {{"link", jsonText(link.name)},
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
        print("value", valueObject(row));
    }
}

void JsonView::report(const Event &event)
{
    QJsonObject object{{"link", jsonText(event.link)},
                       {"name", jsonText(event.name)},
                       {"state", nameOf(event.state)}};
    if (kindOf(event.state) == Event::WRITE)
        object["value"] = jsonText(event.value);
    if (!event.detail.empty())
        object["reason"] = jsonText(event.detail);
    static const char *const kinds[] = {"write", "station", "port"};
    print(kinds[kindOf(event.state)], object);
}

void JsonView::note(const std::string &message)
{
    print("note", {{"text", jsonText(message)}});
}

void JsonView::finish(const Snapshot &snapshot)
{
    show(snapshot);
    for (const LinkRow &link : snapshot.links)
        for (const StationStatus &status : link.stations)
            print("summary", stationObject(link, status));
}

void JsonView::print(const char *event, const QJsonObject &object)
{
    std::printf("%s\n", timedJsonLine(event, object).c_str());
    std::fflush(stdout);
}

} // namespace velko
