// Shows values and events as JSON objects, one per line.
#pragma once

#include "host/core/events/event.h"
#include "host/core/session/snapshot.h"
#include "host/views/poll_view.h"

#include <QJsonObject>

#include <map>
#include <string>

namespace velko
{

class JsonView : public PollView
{
public:
    void show(const Snapshot &snapshot) override;
    void report(const Event &event) override;
    void note(const std::string &text) override;
    void finish(const Snapshot &snapshot) override;

private:
    static void print(const char *event, const QJsonObject &object);

    std::map<std::string, std::string> m_shown; // by name
};

} // namespace velko
