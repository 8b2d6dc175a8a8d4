#include "host/views/summary.h"

#include "host/core/line/replies.h"
#include "host/core/text/numbers.h"
#include "host/views/state_texts.h"
#include "host/views/text_table.h"

#include <algorithm>

namespace velko
{

namespace
{

const size_t WIDEST = 1000; // characters: no line is cut

TextTable::Row rowOf(const StationStatus &status)
{
    const StationCounters &counters = status.counters;
    TextTable::Row row = {std::to_string(status.station), status.isOnline ? "online" : "offline"};
    for (const StationCounters::Count count :
         {counters.sent, counters.good, counters.noReply, counters.badCrc, counters.wrongLength,
          counters.retries, counters.givenUp})
        row.push_back(std::to_string(count));
    for (const microseconds time : {counters.meanResponse(), counters.worstResponse})
        row.push_back(time.count() > 0 ? thousandths(time.count()) : "-");
    return row;
}

std::vector<std::string> stationTable(const LinkRow &link, size_t width)
{
    const bool hasCollisions =
        std::any_of(link.stations.begin(), link.stations.end(),
                    [](const StationStatus &status) { return status.counters.collisions > 0; });
    TextTable::Row headings = {"station", "is",      "sent",     "good", "no reply", "CRC",
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

std::string sentenceOn(const std::string &station, const StationStatus &status)
{
    const StationCounters &counters = status.counters;
    std::string text = station + " sent " + std::to_string(counters.good) + " good responses to "
                       + std::to_string(counters.sent) + " requests, mean response time "
                       + thousandths(counters.meanResponse().count()) + " ms.";
    if (status.timesOffline == 0)
        return text;
    const auto time = std::chrono::duration_cast<milliseconds>(status.timeOffline).count();
    return text + " It was offline " + std::to_string(status.timesOffline)
           + (status.timesOffline == 1 ? " time, " : " times, ") + thousandths(time) + " s in total"
           + (status.isOnline ? ", and is online again." : ", and is still offline.");
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
           + (written > 0 ? "; written only: " + std::to_string(written) + "." : ".");
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
        lines.push_back("Link " + link.name + (link.isOpen ? " on " : ", port not open: ")
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
