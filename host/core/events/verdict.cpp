#include "host/core/events/verdict.h"

#include "host/core/line/replies.h"

namespace velko
{

namespace
{

Verdict failure(const Protocol &request, const Exchange &exchange)
{
    const QByteArray &reply = exchange.reply;
    if (exchange.outcome == Exchange::COLLISION)
        return {Verdict::COLLISION, 0, false, "collision: the echo is not what was sent"};
    if (exchange.outcome == Exchange::NO_ECHO)
        return {Verdict::COLLISION, 0, false, "no echo: does the adapter return what is sent?"};
    if (reply.isEmpty())
        return {Verdict::NO_REPLY, 0, false, "no answer"};
    if (isExceptionTo(request.frame, reply))
        return {Verdict::EXCEPTION, exceptionCode(reply), false,
                exceptionText(exceptionCode(reply))};
    if (reply.size() != request.replyLen)
        return {Verdict::WRONG_LENGTH, 0, false,
                "wrong length: " + std::to_string(reply.size()) + " of "
                    + std::to_string(request.replyLen) + " bytes"};
    return {Verdict::BAD_CRC, 0, false, "wrong CRC"};
}

} // namespace

bool isGood(int resultCode)
{
    return resultCode == RESULT_GOOD || resultCode == RESULT_REMOTE_NOT_STORED;
}

Verdict verdictOn(const Protocol &request, const Exchange &exchange, int resultCode)
{
    if (isGood(resultCode))
        return {Verdict::GOOD, 0, false, "good"};
    Verdict verdict = failure(request, exchange);
    verdict.repeats = resultCode == RESULT_WILL_REPEAT;
    return verdict;
}

} // namespace velko
