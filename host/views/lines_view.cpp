#include "host/views/lines_view.h"

#include "host/views/state_texts.h"
#include "host/views/summary.h"

#include <cstdio>

namespace velko
{

namespace
{

const std::chrono::seconds SHORTEST_INTERVAL(1); // between two values of one variable

} // namespace

void LinesView::show(const Snapshot &snapshot)
{
    showChanges(snapshot, SHORTEST_INTERVAL);
}

void LinesView::showChanges(const Snapshot &snapshot, std::chrono::seconds shortestInterval)
{
    const Clock::time_point now = Clock::now();
    for (const ValueRow &row : snapshot.values) {
        if (!isTried(row))
            continue;
        Shown &shown = m_shown[row.variable.name];
        const std::string state = stateText(row.state);
        const bool isDue = shown.text != row.text && now - shown.time >= shortestInterval;
        if (shown.state == state && !isDue)
            continue;
        shown = {row.text, state, now};
        std::printf("%s  %s = %s  (%s)\n", timeText().c_str(), row.variable.name.c_str(),
                    row.text.c_str(), state.c_str());
    }
    std::fflush(stdout);
}

void LinesView::report(const Event &event)
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
    showChanges(snapshot, std::chrono::seconds(0)); // the last line of a value is its last value
    std::printf("\n");
    for (const std::string &line : summaryOf(snapshot))
        std::printf("%s\n", line.c_str());
}

} // namespace velko
