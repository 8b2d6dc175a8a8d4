#include "host/core/trust/check_reads.h"

#include "host/core/line/crc16.h"
#include "host/core/line/replies.h"
#include "host/core/sizes/frames.h"
#include "host/core/sizes/units.h"
#include "host/core/variables/kinds.h"

#include <algorithm>
#include <array>

namespace velko
{

namespace
{

// Exceptions do not tell which request they answer. A station that sends nothing else cannot be
// checked.
const int MAX_EXCEPTIONS_IN_ROW = 20;

void appendNumber(QByteArray &frame, int number)
{
    frame.append(static_cast<char>(number >> BYTE_BITS));
    frame.append(static_cast<char>(number));
}

CheckReads::Read readOf(int station, int function, int firstRegister, int count)
{
    QByteArray frame;
    frame.append(static_cast<char>(station));
    frame.append(static_cast<char>(function));
    appendNumber(frame, firstRegister);
    appendNumber(frame, count);
    return {frame + crc16(frame), READ_OVERHEAD_BYTES + count * REGISTER_BYTES};
}

// Two registers first: a station may refuse to read half of a double word.
int countAt(int index, int count)
{
    const int other = index % 2 == 0 ? index + 2 : index;
    return std::min(other, count);
}

} // namespace

void CheckReads::load(const Link &link, const std::vector<PlannedRequest> &plan)
{
    m_stations.clear();
    for (const PlannedRequest &request : plan) {
        Station &station = m_stations[request.var.station];
        const int first = byteAt(request.frame, 2) << BYTE_BITS | byteAt(request.frame, 3);
        station.blocks.push_back({byteAt(request.frame, 1), first, request.var.count});
        station.isPolled = true;
    }
    for (const Variable &variable : link.variables) {
        Station &station = m_stations[variable.station];
        if (!station.blocks.empty())
            continue;
        const RegisterSpan span = registersOf(variable);
        const int unit = std::max(unitBits(variable.kind) / REGISTER_BITS, 1);
        station.blocks.push_back(
            {READ_HOLDING_REGISTERS, span.first + wireOffset(span.area), unit});
    }
}

bool CheckReads::arePossible(int station) const
{
    const auto place = m_stations.find(station);
    if (place == m_stations.end() || !place->second.isPolled
        || place->second.exceptionsInRow >= MAX_EXCEPTIONS_IN_ROW)
        return false;
    const std::vector<Block> &blocks = place->second.blocks;
    return std::any_of(blocks.begin(), blocks.end(), [&](const Block &block) {
        return block.count > 1 || block.function != blocks.front().function;
    });
}

CheckReads::Read CheckReads::next(int station, const OpenRequests &open,
                                  const ResponseShape &waiting)
{
    Station &known = m_stations.at(station);
    if (known.last && known.lastResult == UNANSWERED
        && open.awaits(station, known.last->response()))
        return *known.last;
    const std::optional<ResponseShape> latest = open.latestFrame(station);
    const std::array<Condition, 3> conditions = {
        [&](const ResponseShape &shape) {
            return !open.awaits(station, shape) && shape != waiting && shape != latest;
        },
        [&](const ResponseShape &shape) {
            return !open.awaits(station, shape) && shape != waiting;
        },
        [&](const ResponseShape &shape) { return !open.awaits(station, shape); }};
    std::optional<Read> read;
    for (size_t i = 0; i < conditions.size() && !read; ++i)
        read = find(station, known, conditions.at(i));
    known.last = read ? read : mostTelling(station, known, open);
    known.lastResult = UNANSWERED;
    return *known.last;
}

// Its first open request is the latest one. A response is taken for this request, and those before
// it are no longer open then.
CheckReads::Read CheckReads::mostTelling(int number, const Station &station,
                                         const OpenRequests &open)
{
    std::optional<ResponseShape> best;
    size_t latest = 0;
    find(number, station, [&](const ResponseShape &shape) {
        const size_t position = open.firstPosition(number, shape);
        if (!best || position > latest) {
            best = shape;
            latest = position;
        }
        return false;
    });
    return *find(number, station, [&](const ResponseShape &shape) { return shape == best; });
}

CheckReads::Read CheckReads::probe(int station, const OpenRequests &open)
{
    return next(station, open, ResponseShape());
}

void CheckReads::ended(int station, Result result, bool isOpen)
{
    Station &known = m_stations.at(station);
    known.lastResult = result;
    if (!isOpen)
        known.exceptionsInRow = 0;
    if (result != EXCEPTION)
        return;
    ++known.exceptionsInRow;
    known.firstBlock = (known.firstBlock + 1) % known.blocks.size(); // others may be readable
}

// Returns the first wanted read of the beginning of a block.
std::optional<CheckReads::Read> CheckReads::find(int number, const Station &station,
                                                 const Condition &isWanted)
{
    for (size_t i = 0; i < station.blocks.size(); ++i) {
        const Block &block = station.blocks[(station.firstBlock + i) % station.blocks.size()];
        for (int index = 0; index < block.count; ++index) {
            const Read read =
                readOf(number, block.function, block.firstRegister, countAt(index, block.count));
            if (isWanted(read.response()))
                return read;
        }
    }
    return std::nullopt;
}

} // namespace velko
