// Events and states of values as the views show them.
#pragma once

#include "host/core/events/event.h"
#include "host/core/session/snapshot.h"
#include "host/core/status/link_status.h"

#include <string>

namespace velko
{

/// False until the first attempt to read the variable: there is nothing to show before it.
bool isTried(const ValueRow &row);

/// "2.5 s"; "-" without an age.
std::string ageText(const ValueState &state);

/// "good"; the reason follows any other state: "stale: no answer".
std::string stateText(const ValueState &state);

/// The local time: "12:00:01.250".
std::string timeText();

/// "pump.speed = 5: failed: no answer"
std::string textOf(const Event &event);

} // namespace velko
