// Bytes of responses that wait until they are due on the line.
#pragma once

#include <QByteArray>

#include <chrono>
#include <cstdint>
#include <map>
#include <vector>

namespace velko
{

/// Bytes that are sent without interruption, and the pause before them.
struct Piece {
    std::chrono::nanoseconds pause;
    QByteArray bytes;
};

/// Responses of several stations may overlap. Then their bytes mix, as on a real line. Used by one
/// thread.
class Outbox
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    struct Chunk {
        QByteArray bytes;
        uint64_t entry;   ///< of the request in the request log
        QByteArray whole; ///< the whole piece if the chunk is its last one, otherwise empty
    };

    /// Queues the pieces for sending from `begin` on. `character`: time of one byte. `entry`: of
    /// the request in the request log. Returns the time at which the last byte is due.
    TimePoint add(TimePoint begin, const std::vector<Piece> &pieces,
                  std::chrono::nanoseconds character, uint64_t entry);

    /// True if a chunk is due.
    bool hasDue(TimePoint now) const;

    /// Returns the time at which the first chunk is due; `otherwise` if there is none.
    TimePoint nextDue(TimePoint otherwise) const;

    /// Removes and returns the first chunk. There must be one.
    Chunk takeFirst();

private:
    void addPiece(TimePoint begin, const QByteArray &bytes, std::chrono::nanoseconds character,
                  uint64_t entry);

    std::multimap<TimePoint, Chunk> m_chunks;
};

} // namespace velko
