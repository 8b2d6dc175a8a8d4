// The interface of the views of `poll`.
#pragma once

#include "host/core/events/event.h"
#include "host/core/session/snapshot.h"

#include <string>
#include <vector>

namespace velko
{

/// Used by one thread.
class PollView
{
public:
    virtual ~PollView() = default;

    /// Shows the values. Called several times per second.
    virtual void show(const Snapshot &snapshot) = 0;
    /// Shows an event.
    virtual void report(const Event &event) = 0;
    /// Shows a message that is not an event, for example about a reload.
    virtual void note(const std::string &text) = 0;
    struct Typed {
        std::vector<std::string> lines; ///< writes
        bool isEnd = false;             ///< the user ends the program
    };
    /// True if type() shall get the bytes of the keyboard.
    virtual bool takesKeys() const { return false; }
    /// Takes bytes of the keyboard, or none if no key was pressed for some time.
    virtual Typed type(const std::string & /*bytes*/) { return {}; }
    /// Called before the process is stopped, for example by Ctrl-Z.
    virtual void suspend() {}
    /// Called when the process has been continued. The terminal may have changed meanwhile.
    virtual void resume() {}
    /// Called after the last call of show. Events of the exchanges in progress may follow.
    virtual void leave() {}
    /// Shows the final values and the summary. Called last.
    virtual void finish(const Snapshot &snapshot) = 0;
};

} // namespace velko
