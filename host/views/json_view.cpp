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
    const auto timeOffline = std::chrono::round<milliseconds>(status.timeOffline).count();
    QJsonObject exceptions;
    for (const auto &[code, count] : counters.exceptions)
        exceptions[QString::number(code)] = qint64{count};
    QJsonObject object{{"link", jsonText(link.name)},
                       {"station", status.station},
                       {"online", status.isOnline},
                       {"cycles", qint64{link.cycles}},
                       {"sent", qint64{counters.sent}},
                       {"good", qint64{counters.good}},
                       {"noReply", qint64{counters.noReply}},
                       {"badCrc", qint64{counters.badCrc}},
                       {"wrongLength", qint64{counters.wrongLength}},
                       {"collisions", qint64{counters.collisions}},
                       {"exceptions", exceptions},
                       {"retries", qint64{counters.retries}},
                       {"givenUp", qint64{counters.givenUp}},
                       {"timesOffline", status.timesOffline},
                       {"secondsOffline", jsonThousandth(timeOffline)}};
    if (counters.sent == counters.noReply + counters.collisions)
        return object; // there was no response
    object["meanResponseMs"] = jsonThousandth(counters.meanResponse().count());
    object["worstResponseMs"] = jsonThousandth(counters.worstResponse.count());
    return object;
}

// What a new line is printed for. The place changes if the file is read again.
std::string contentOf(const ValueRow &row)
{
    return row.text + '\n' + stateText(row.state) + '\n' + std::to_string(row.variable.station)
           + '\n' + placeOf(row.variable);
}

} // namespace

void JsonView::show(const Snapshot &snapshot)
{
    const Clock::time_point now = Clock::now();
    for (const ValueRow &row : snapshot.values)
        showValue(row, now);
    if (!isDue(m_counted, now))
        return;
    m_counted = now;
    showStations("counters", snapshot);
}

bool JsonView::isDue(Clock::time_point last, Clock::time_point now) const
{
    return now - last >= m_heartbeat;
}

// A variable that no request has read yet is shown at the first heartbeat, unless it is only
// written.
void JsonView::showValue(const ValueRow &row, Clock::time_point now)
{
    Shown &shown = m_shown.try_emplace(row.variable.name, Shown{{}, now}).first->second;
    const bool isRepeated = isDue(shown.time, now);
    if (!isTried(row) && !(isRepeated && row.variable.isRead()))
        return;
    const std::string content = contentOf(row);
    if (shown.content == content && !isRepeated)
        return;
    shown = {content, now};
    print("value", valueObject(row));
}

void JsonView::showStations(const char *event, const Snapshot &snapshot)
{
    for (const LinkRow &link : snapshot.links)
        for (const StationStatus &status : link.stations)
            print(event, stationObject(link, status));
}

void JsonView::report(const Event &event)
{
    QJsonObject object{{"link", jsonText(event.link)}, {"state", nameOf(event.state)}};
    if (!event.detail.empty())
        object["reason"] = jsonText(event.detail);
    switch (kindOf(event.state)) {
    case Event::WRITE:
        object["name"] = jsonText(event.name);
        object["value"] = jsonText(event.value);
        return print("write", object);
    case Event::STATION:
        object["station"] = jsonText(event.name).toInt();
        return print("station", object);
    case Event::PORT:
        object["device"] = jsonText(event.name);
        return print("port", object);
    }
}

// Every line has a link. A note is about the whole program.
void JsonView::note(const std::string &message)
{
    print("note", {{"link", QJsonValue::Null}, {"text", jsonText(message)}});
}

void JsonView::finish(const Snapshot &snapshot)
{
    show(snapshot);
    showStations("summary", snapshot);
}

void JsonView::print(const char *event, const QJsonObject &object)
{
    std::printf("%s\n", timedJsonLine(event, object).c_str());
    std::fflush(stdout);
}

} // namespace velko
