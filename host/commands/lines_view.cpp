#include "host/commands/lines_view.h"

#include "host/commands/tables.h"

#include <algorithm>
#include <cstdio>

namespace
{

const std::chrono::seconds SHORTEST_INTERVAL(1); // between two values of one variable

} // namespace

void LinesView::show(const Snapshot &snapshot)
{
    for (const ValueRow &row : snapshot.values) {
        // Before the first attempt there is nothing to say.
        if (row.state.freshness == Freshness::NEVER_READ
            && row.state.refusal.kind == Verdict::NOT_SENT)
            continue;
        Shown &shown = m_shown[row.variable.name];
        const std::string state = stateText(row.state);
        const bool isDue = shown.text != row.text && Clock::now() - shown.time >= SHORTEST_INTERVAL;
        if (shown.state == state && !isDue)
            continue;
        shown = {row.text, state, Clock::now()};
        std::printf("%s  %s = %s  (%s)\n", timeText().c_str(), row.variable.name.c_str(),
                    row.text.c_str(), state.c_str());
    }
    std::fflush(stdout);
}

void LinesView::tell(const Event &event)
{
    note(textOf(event));
}

void LinesView::note(const std::string &text)
{
    std::printf("%s  * %s\n", timeText().c_str(), text.c_str());
    std::fflush(stdout);
}

void LinesView::finish(const Snapshot &snapshot)
{
    std::printf("\n");
    for (const std::string &line : summaryOf(snapshot))
        std::printf("%s\n", line.c_str());
}

namespace
{

std::string sentenceOn(const StationStatus &status)
{
    const StationCounters &counters = status.counters;
    std::string text = "Station " + std::to_string(status.station) + " answered "
                       + std::to_string(counters.good) + " of " + std::to_string(counters.sent)
                       + " requests well, after " + thousandths(counters.meanResponse().count())
                       + " ms on average.";
    if (status.timesOff == 0)
        return text;
    const auto time = std::chrono::duration_cast<milliseconds>(status.timeOff).count();
    return text + " It fell silent " + std::to_string(status.timesOff)
           + (status.timesOff == 1 ? " time" : " times") + " and was left out for "
           + thousandths(time) + " s"
           + (status.isOn ? "; it is back." : "; it is still off, and probed now and then.");
}

} // namespace

std::vector<std::string> valueTable(const Snapshot &snapshot)
{
    TextTable values({"name", "station", "address", "value", "state", "age"});
    for (const ValueRow &row : snapshot.values)
        values.add({row.variable.name, std::to_string(row.variable.station), placeOf(row.variable),
                    row.text, stateText(row.state), ageText(row.state)});
    return values.lines();
}

std::vector<std::string> linkTables(const Snapshot &snapshot)
{
    std::vector<std::string> lines;
    for (const LinkRow &link : snapshot.links) {
        lines.push_back("");
        lines.push_back("Link " + link.name + (link.isOpen ? " on " : " without its port: ")
                        + link.port + ", " + std::to_string(link.cycles) + " cycles");
        const std::vector<std::string> stations = stationTable(link);
        lines.insert(lines.end(), stations.begin(), stations.end());
    }
    return lines;
}

std::vector<std::string> summaryOf(const Snapshot &snapshot)
{
    std::vector<std::string> lines = valueTable(snapshot);
    const std::vector<std::string> links = linkTables(snapshot);
    lines.insert(lines.end(), links.begin(), links.end());
    const auto good =
        std::count_if(snapshot.values.begin(), snapshot.values.end(),
                      [](const ValueRow &row) { return row.state.freshness == Freshness::GOOD; });
    lines.push_back("");
    for (const LinkRow &link : snapshot.links)
        for (const StationStatus &status : link.stations)
            lines.push_back(sentenceOn(status));
    lines.push_back(std::to_string(good) + " of " + std::to_string(snapshot.values.size())
                    + " values are good.");
    return lines;
}
