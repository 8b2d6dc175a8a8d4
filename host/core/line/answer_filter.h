// Finds the answer to one request among the bytes that arrive.
#pragma once

#include <QByteArray>

namespace velko
{

/// Drops what is no part of the answer: frames of other stations and functions, late answers of
/// another length or, to a write, of other registers, and noise. What the driver would judge a bad
/// answer (a wrong checksum, a cut frame) is an answer here.
class AnswerFilter
{
public:
    /// `replyLength`: bytes of a good answer, 5 or more.
    AnswerFilter(const QByteArray &request, int replyLength);

    void add(const QByteArray &bytes);

    /// No byte came for the time that separates bytes: what looked like the beginning of another
    /// station's frame is none.
    void gap();

    /// The answer's first byte is there.
    bool hasBegun() const;

    /// There is nothing to wait for any more: a whole answer or an exception reply.
    bool isComplete() const;

    /// The answer, or what there is of it; empty when it has not begun.
    QByteArray answer() const;

    /// What was dropped since the last call.
    QByteArray takeDropped();

    /// What came behind the answer, or what there is when it has not begun. The last call.
    QByteArray takeRest();

private:
    bool beginsLikeAnswer() const;
    bool isException() const;
    bool fitsRequest(int length) const;
    int foreignBytes() const;
    void drop(int count);
    void dropForeign();

    QByteArray m_request;
    int m_replyLength;
    QByteArray m_bytes;
    QByteArray m_dropped;
};

} // namespace velko
