// Passes the events of one link to a sink.
#pragma once

#include "host/core/events/event.h"

#include <string>

namespace velko
{

/// Adds the name of the link. Used on the communication thread.
class Reporter
{
public:
    /// `sink` is the caller's and outlives this object.
    Reporter(const std::string &link, EventSink &sink) : m_link(link), m_sink(sink) {}

    void report(Event event) const
    {
        event.link = m_link;
        m_sink.receive(event);
    }

    void report(Event::State state, const std::string &name, const std::string &detail) const
    {
        Event event;
        event.state = state;
        event.name = name;
        event.detail = detail;
        report(event);
    }

private:
    std::string m_link;
    EventSink &m_sink;
};

} // namespace velko
