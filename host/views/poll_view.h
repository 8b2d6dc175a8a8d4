// The interface of what `poll` shows.
#pragma once

#include "host/core/events/event.h"
#include "host/core/session/snapshot.h"

#include <string>

namespace velko
{

class PollView
{
public:
    virtual ~PollView() = default;

    /// Called several times a second.
    virtual void show(const Snapshot &snapshot) = 0;
    virtual void report(const Event &event) = 0;
    /// Shows what is neither a value nor an event: a reload, a line that was not understood.
    virtual void note(const std::string &text) = 0;
    /// Ends the calls of show. The exchanges that have begun still end, and their events follow.
    virtual void leave() {}
    /// Called last.
    virtual void finish(const Snapshot &snapshot) = 0;
};

} // namespace velko
