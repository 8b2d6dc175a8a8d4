// Reads whose answer shows that no answer to an earlier request can follow.
#pragma once

#include "host/core/links/link.h"
#include "host/core/plan/request_planner.h"
#include "host/core/trust/open_requests.h"
#include "host/core/trust/response_shape.h"

#include <QByteArray>

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace velko
{

/// Check reads ask for registers that are polled anyway. Used on the communication thread.
class CheckReads
{
public:
    struct Read {
        QByteArray frame;
        int responseLength; ///< bytes

        ResponseShape response() const { return shapeOfResponse(frame, responseLength); }
    };

    enum Result { UNANSWERED, ANSWERED, EXCEPTION };

    /// Replaces the registers that may be read.
    void load(const Link &link, const std::vector<PlannedRequest> &plan);

    /// True if the polled registers of the station give responses of two shapes at least, and the
    /// station does not refuse all check reads with exceptions.
    bool arePossible(int station) const;

    /// Returns the next check read of a station, with a response that no open request awaits, where
    /// possible. `waiting`: response of the request that waits for trust. A check read without
    /// answer is repeated: its answers may still come, but two shapes are enough then to tell them
    /// apart, however many there are.
    Read next(int station, const OpenRequests &open, const ResponseShape &waiting);

    /// Returns a read that shows whether the station responds. It need not be polled. The station has
    /// a variable.
    Read probe(int station, const OpenRequests &open);

    /// Notes the result of the read that was returned last. `isOpen`: a request is still open.
    void ended(int station, Result result, bool isOpen);

private:
    /// Registers that one request reads.
    struct Block {
        int function;
        int firstRegister; // on the line
        int count;
    };

    struct Station {
        std::vector<Block> blocks;
        bool isPolled = false;
        size_t firstBlock = 0;    // the one that is tried first
        std::optional<Read> last; // the read that was returned last
        Result lastResult = ANSWERED;
        int exceptionsInRow = 0;
    };

    using Condition = std::function<bool(const ResponseShape &)>;

    /// Returns the read whose answer would leave the fewest open requests.
    static Read mostTelling(int number, const Station &station, const OpenRequests &open);
    static std::optional<Read> find(int number, const Station &station, const Condition &isWanted);

    std::map<int, Station> m_stations; // by number
};

} // namespace velko
