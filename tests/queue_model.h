// A model of a request list according to the host's header: which request is due, and which
// callbacks its end causes. The tests compare the driver's lists with it.
#pragma once

#include "velko_modbus_rtu.h"

#include <deque>
#include <set>
#include <string>

struct QueueModel {
    /// As with QUEUE_CHECKED.
    void queueWrite(const RW_VAR &request);
    void queueOnceRead(const RW_VAR &request);

    /// Rotates the first request of an enabled station to the head and returns it; null if there is
    /// none.
    const RW_VAR *due(const std::set<int> &disabled);

    // Both end the request at the head and return the callbacks like DriverUnderTest::takeEvents().
    std::string end(const ComInfo &link, bool good); ///< for a queue
    std::string rotate(bool good);                   ///< for the cyclic list

    std::deque<RW_VAR> entries;

private:
    void moveHeadToEnd();
};
