#include "host/core/events/verdict.h"

#include "host/core/line/replies.h"

#include <utility>

namespace velko
{

namespace
{

Verdict exceptionVerdict(const QByteArray &reply)
{
    Verdict verdict(Verdict::EXCEPTION, exceptionText(exceptionCode(reply)));
    verdict.exception = exceptionCode(reply);
    return verdict;
}

Verdict failure(const Protocol &request, const Exchange &exchange)
{
    const QByteArray &reply = exchange.reply;
    if (exchange.outcome == Exchange::COLLISION)
        return Verdict(Verdict::COLLISION, "collision: the echo is not what was sent");
    if (exchange.outcome == Exchange::NO_ECHO)
        return Verdict(Verdict::COLLISION, "no echo: does the adapter return what is sent?");
    if (reply.isEmpty())
        return Verdict(Verdict::NO_REPLY, "no response");
    if (isExceptionTo(request.frame, reply))
        return exceptionVerdict(reply);
    if (reply.size() != request.replyLen)
        return Verdict(Verdict::WRONG_LENGTH, "wrong length: " + std::to_string(reply.size())
                                                  + " of " + std::to_string(request.replyLen)
                                                  + " bytes");
    return Verdict(Verdict::BAD_CRC, "wrong CRC");
}

} // namespace

Verdict::Verdict(Kind itsKind, std::string itsText) : kind(itsKind), text(std::move(itsText)) {}

Verdict verdictOn(const Protocol &request, const Exchange &exchange, int resultCode)
{
    if (velko_result_is_good(resultCode))
        return Verdict(Verdict::GOOD, "good");
    Verdict verdict = failure(request, exchange);
    verdict.repeats = resultCode == RESULT_WILL_REPEAT;
    return verdict;
}

} // namespace velko
