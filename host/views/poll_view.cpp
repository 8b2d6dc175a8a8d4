#include "host/views/poll_view.h"

#include "host/core/line/replies.h"
#include "host/core/text/numbers.h"
#include "host/views/text_table.h"

#include <QDateTime>

#include <algorithm>

namespace velko
{

namespace
{

TextTable::Row rowOf(const StationStatus &status)
{
    const StationCounters &counters = status.counters;
    TextTable::Row row = {std::to_string(status.station), status.isOn ? "on" : "off"};
    for (const StationCounters::Count count :
         {counters.sent, counters.good, counters.noReply, counters.badCrc, counters.wrongLength,
          counters.retries, counters.givenUp})
        row.push_back(std::to_string(count));
    row.push_back(thousandths(counters.meanResponse().count()));
    row.push_back(thousandths(counters.worstResponse.count()));
    return row;
}

} // namespace

bool isTried(const ValueRow &row)
{
    return row.state.freshness != Freshness::NEVER_READ
           || row.state.refusal.kind != Verdict::NOT_SENT;
}

std::string ageText(const ValueState &state)
{
    return state.age ? thousandths(state.age->count()) + " s" : "-";
}

std::string stateText(const ValueState &state)
{
    const std::string name = nameOf(state.freshness);
    return state.freshness == Freshness::GOOD || state.refusal.text.empty()
               ? name
               : name + ": " + state.refusal.text;
}

std::string timeText()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("HH:mm:ss.zzz")).toStdString();
}

std::string textOf(const Event &event)
{
    const std::string detail = event.detail.empty() ? "" : ": " + event.detail;
    switch (event.kind) {
    case Event::WRITE:
        return event.name + " = " + event.value + ": " + event.state + detail;
    case Event::STATION:
        return event.link + ", station " + event.name + ": " + event.state + detail;
    default:
        return event.link + ", port " + event.name + ": " + event.state + detail;
    }
}

std::vector<std::string> stationTable(const LinkRow &link, size_t width)
{
    const bool hasCollisions =
        std::any_of(link.stations.begin(), link.stations.end(),
                    [](const StationStatus &status) { return status.counters.collisions > 0; });
    TextTable::Row headings = {"station", "is",      "sent",     "good", "no reply", "bad CRC",
                               "length",  "retries", "given up", "mean", "worst"};
    if (hasCollisions)
        headings.emplace_back("collisions");
    TextTable table(headings);
    for (const StationStatus &status : link.stations) {
        TextTable::Row row = rowOf(status);
        if (hasCollisions)
            row.push_back(std::to_string(status.counters.collisions));
        table.add(row);
    }
    std::vector<std::string> lines = table.lines(width);
    for (const StationStatus &status : link.stations)
        for (const auto &[code, count] : status.counters.exceptions)
            lines.push_back("station " + std::to_string(status.station) + ": "
                            + std::to_string(count) + " x " + exceptionText(code));
    return lines;
}

} // namespace velko
