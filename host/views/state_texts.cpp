#include "host/views/state_texts.h"

#include "host/core/text/numbers.h"

#include <QDateTime>

namespace velko
{

bool isTried(const ValueRow &row)
{
    return row.state.freshness != Freshness::NEVER_READ
           || row.state.lastAttempt.kind != Verdict::NOT_SENT;
}

std::string ageText(const ValueState &state)
{
    return state.age ? thousandths(state.age->count()) + " s" : "-";
}

std::string stateText(const ValueState &state)
{
    const std::string name = nameOf(state.freshness);
    return state.freshness == Freshness::GOOD || state.lastAttempt.text.empty()
               ? name
               : name + ": " + state.lastAttempt.text;
}

std::string timeText()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("HH:mm:ss.zzz")).toStdString();
}

std::string textOf(const Event &event)
{
    const std::string detail = event.detail.empty() ? "" : ": " + event.detail;
    switch (kindOf(event.state)) {
    case Event::WRITE:
        return event.name + " = " + event.value + ": " + nameOf(event.state) + detail;
    case Event::STATION:
        return event.link + ", station " + event.name + ": " + nameOf(event.state) + detail;
    default:
        return event.link + ", port " + event.name + ": " + nameOf(event.state) + detail;
    }
}

} // namespace velko
