#include "host/commands/poll_view.h"

#include "host/commands/tables.h"
#include "host/line/replies.h"

#include <QDateTime>

namespace
{

std::string exceptionsText(const StationCounters &counters)
{
    std::string text;
    for (const auto &[code, count] : counters.exceptions)
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " x " + exceptionText(code);
    return text.empty() ? "-" : text;
}

} // namespace

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

std::vector<std::string> stationTable(const LinkRow &link)
{
    TextTable table({"station", "is", "sent", "good", "no reply", "bad CRC", "wrong length",
                     "collisions", "retries", "given up", "mean ms", "worst ms", "exceptions"});
    for (const StationStatus &status : link.stations) {
        const StationCounters &counters = status.counters;
        table.add({std::to_string(status.station), status.isOn ? "on" : "off",
                   std::to_string(counters.sent), std::to_string(counters.good),
                   std::to_string(counters.noReply), std::to_string(counters.badCrc),
                   std::to_string(counters.wrongLength), std::to_string(counters.collisions),
                   std::to_string(counters.retries), std::to_string(counters.givenUp),
                   thousandths(counters.meanResponse().count()),
                   thousandths(counters.worstResponse.count()), exceptionsText(counters)});
    }
    return table.lines();
}
