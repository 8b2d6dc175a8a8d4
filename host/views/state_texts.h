// Events and states of values as the views show them.
#pragma once

#include "host/core/events/event.h"
#include "host/core/session/snapshot.h"
#include "host/core/status/link_status.h"

#include <string>

namespace velko
{

/// False before the first attempt to read the variable. There is nothing to show until then.
bool isTried(const ValueRow &row);

/// Returns the age, for example "2.5 s"; "-" if the variable was never read.
std::string ageText(const ValueState &state);

/// Returns the state, with its reason if it is not good: "good", "stale: no response".
std::string stateText(const ValueState &state);

/// Returns the local time, for example "12:00:01.250".
std::string timeText();

/// Returns, for example, "pump.speed = 5: failed: no response".
std::string textOf(const Event &event);

} // namespace velko
