#include "host/views/lines_view.h"

#include "host/core/text/numbers.h"
#include "host/views/text_table.h"

#include <algorithm>
#include <cstdio>

namespace velko
{

namespace
{

const size_t WIDEST = 1000; // characters: where nothing cuts a line

const std::chrono::seconds SHORTEST_INTERVAL(1); // between two values of one variable

} // namespace

void LinesView::show(const Snapshot &snapshot)
{
    for (const ValueRow &row : snapshot.values) {
        if (!isTried(row))
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
    show(snapshot); // what became known since the last time
    std::printf("\n");
    for (const std::string &line : summaryOf(snapshot))
        std::printf("%s\n", line.c_str());
}

namespace
{

std::string sentenceOn(const std::string &station, const StationStatus &status)
{
    const StationCounters &counters = status.counters;
    std::string text = station + " answered " + std::to_string(counters.good) + " of "
                       + std::to_string(counters.sent) + " requests well, after "
                       + thousandths(counters.meanResponse().count()) + " ms on average.";
    if (status.timesOff == 0)
        return text;
    const auto time = std::chrono::duration_cast<milliseconds>(status.timeOff).count();
    return text + " It fell silent " + std::to_string(status.timesOff)
           + (status.timesOff == 1 ? " time" : " times") + " and was left out for "
           + thousandths(time) + " s"
           + (status.isOn ? "; it is back." : "; it is still off, and probed now and then.");
}

std::string sentenceOn(const std::vector<ValueRow> &rows)
{
    const auto isRead = [](const ValueRow &row) { return row.variable.isRead(); };
    const auto isGood = [&](const ValueRow &row) {
        return isRead(row) && row.state.freshness == Freshness::GOOD;
    };
    const auto read = std::count_if(rows.begin(), rows.end(), isRead);
    const auto good = std::count_if(rows.begin(), rows.end(), isGood);
    const auto written = static_cast<std::ptrdiff_t>(rows.size()) - read;
    return std::to_string(good) + " of " + std::to_string(read) + " values are good"
           + (written > 0 ? "; " + std::to_string(written) + " more are only written." : ".");
}

} // namespace

std::vector<std::string> valueTable(const Snapshot &snapshot, size_t width)
{
    TextTable values({"name", "station", "address", "value", "age", "state"});
    for (const ValueRow &row : snapshot.values)
        values.add({row.variable.name, std::to_string(row.variable.station), placeOf(row.variable),
                    row.text, ageText(row.state), stateText(row.state)});
    return values.lines(width);
}

std::vector<std::string> linkTables(const Snapshot &snapshot, size_t width)
{
    std::vector<std::string> lines;
    for (const LinkRow &link : snapshot.links) {
        lines.push_back("");
        lines.push_back("Link " + link.name + (link.isOpen ? " on " : " without its port: ")
                        + link.port + ", " + std::to_string(link.cycles) + " cycles");
        const std::vector<std::string> stations = stationTable(link, width);
        lines.insert(lines.end(), stations.begin(), stations.end());
    }
    return lines;
}

std::vector<std::string> summaryOf(const Snapshot &snapshot)
{
    std::vector<std::string> lines = valueTable(snapshot, WIDEST);
    const std::vector<std::string> links = linkTables(snapshot, WIDEST);
    lines.insert(lines.end(), links.begin(), links.end());
    lines.push_back("");
    for (const LinkRow &link : snapshot.links) {
        const std::string name =
            snapshot.links.size() > 1 ? "Link " + link.name + ", station " : "Station ";
        for (const StationStatus &status : link.stations)
            lines.push_back(sentenceOn(name + std::to_string(status.station), status));
    }
    lines.push_back(sentenceOn(snapshot.values));
    return lines;
}

} // namespace velko
