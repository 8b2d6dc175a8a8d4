#include "host/plc/outbox.h"

#include <algorithm>

namespace velko
{

namespace
{

using std::chrono::nanoseconds;

// At high baud rates several bytes are sent at once, because the system cannot wake a thread every
// few microseconds.
constexpr nanoseconds SHORTEST_STEP = std::chrono::milliseconds(1);

// Maximum number of bytes of a chunk.
int chunkSize(int size, nanoseconds character)
{
    if (character.count() == 0)
        return std::max(size, 1);
    return static_cast<int>(SHORTEST_STEP / character) + 1;
}

} // namespace

Outbox::TimePoint Outbox::add(TimePoint begin, const std::vector<Piece> &pieces,
                              nanoseconds character, uint64_t entry)
{
    for (const Piece &piece : pieces) {
        begin += piece.pause;
        addPiece(begin, piece.bytes, character, entry);
        begin += character * piece.bytes.size();
    }
    return begin;
}

void Outbox::addPiece(TimePoint begin, const QByteArray &bytes, nanoseconds character,
                      uint64_t entry)
{
    const int step = chunkSize(bytes.size(), character);
    for (int sent = 0; sent < bytes.size(); sent += step) {
        const QByteArray chunk = bytes.mid(sent, step);
        const int end = sent + chunk.size();
        const bool isLast = end == bytes.size();
        m_chunks.insert({begin + character * end, {chunk, entry, isLast ? bytes : QByteArray()}});
    }
}

bool Outbox::hasDue(TimePoint now) const
{
    return !m_chunks.empty() && nextDue(now) <= now;
}

Outbox::TimePoint Outbox::nextDue(TimePoint otherwise) const
{
    return m_chunks.empty() ? otherwise : m_chunks.begin()->first;
}

Outbox::Chunk Outbox::takeFirst()
{
    Chunk chunk = m_chunks.begin()->second;
    m_chunks.erase(m_chunks.begin());
    return chunk;
}

} // namespace velko
