// What the host's header promises about a list of requests, kept beside the driver's own: which one is
// due, and who is told what when it ends.
#pragma once

#include "velko_modbus_rtu.h"

#include <deque>
#include <set>
#include <string>

struct QueueModel {
    /// As QUEUE_CHECKED does it.
    void queueWrite(const RW_VAR &request);
    void queueOnceRead(const RW_VAR &request);

    /// The first request of an enabled station, brought to the head; null without one.
    const RW_VAR *due(const std::set<int> &disabled);

    // Both end the head and return the callbacks that this makes, as DriverUnderTest::takeEvents().
    std::string end(const ComInfo &link, bool good); ///< of a queue
    std::string rotate(bool good);                   ///< of the cyclic list

    std::deque<RW_VAR> entries;
};
