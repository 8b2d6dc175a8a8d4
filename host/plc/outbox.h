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

/// Responses of several stations may overlap: as on a real line, stations that send at the same time
/// damage each other's frames. Used by one thread.
class Outbox
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    struct Chunk {
        QByteArray bytes;
        uint64_t entry;   ///< of the request in the request log
        QByteArray whole; ///< the whole piece if the chunk is its last one, otherwise empty
    };

    /// Queues the pieces for sending from `begin` on, `character` for each byte. Returns when the last
    /// byte is due.
    TimePoint add(TimePoint begin, const std::vector<Piece> &pieces,
                  std::chrono::nanoseconds character, uint64_t entry);

    bool hasDue(TimePoint now) const;

    /// When the first chunk is due; `otherwise` if there is none.
    TimePoint nextDue(TimePoint otherwise) const;

    /// Removes the first chunk. There must be one.
    Chunk takeFirst();

private:
    void addPiece(TimePoint begin, const QByteArray &bytes, std::chrono::nanoseconds character,
                  uint64_t entry);

    std::multimap<TimePoint, Chunk> m_chunks;
};

} // namespace velko
