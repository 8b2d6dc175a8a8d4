// What `poll` shows, in one of several ways.
#pragma once

#include "host/core/events/event.h"
#include "host/core/status/link_status.h"

#include <string>
#include <vector>

namespace velko
{

struct ValueRow {
    Variable variable;
    std::string text; ///< "-" while there is no value
    ValueState state;
};

struct LinkRow {
    std::string name;
    std::string port; ///< the device, or why there is none
    bool isOpen;
    std::int64_t cycles;
    std::vector<StationStatus> stations;
};

struct Snapshot {
    std::vector<ValueRow> values;
    std::vector<LinkRow> links;
};

class PollView
{
public:
    virtual ~PollView() = default;

    /// Several times a second.
    virtual void show(const Snapshot &snapshot) = 0;
    virtual void tell(const Event &event) = 0;
    /// What is neither a value nor an event: a reload, a line that was not understood.
    virtual void note(const std::string &text) = 0;
    /// No more show; what is under way on the lines is waited for.
    virtual void leave() {}
    /// The last call.
    virtual void finish(const Snapshot &snapshot) = 0;
};

/// True once the variable was read, or could not be: before that there is nothing to say.
bool isTried(const ValueRow &row);

/// "2.5 s", "-" without an age.
std::string ageText(const ValueState &state);

/// "good", or "stale: no answer" and so on.
std::string stateText(const ValueState &state);

/// "12:00:01.250"
std::string timeText();

/// "pump.speed = 5: failed: no answer" and so on.
std::string textOf(const Event &event);

/// The stations' rows under their headings; response times are milliseconds, and collisions have a
/// column only where there was one. Exceptions by their names follow.
std::vector<std::string> stationTable(const LinkRow &link, size_t width);

} // namespace velko
