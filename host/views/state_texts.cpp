#include "host/views/state_texts.h"

#include "host/core/text/numbers.h"

#include <QDateTime>

namespace velko
{

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

} // namespace velko
