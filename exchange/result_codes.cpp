#include "exchange/result_codes.h"

#include "driver/modbus_rtu_master.h"

namespace
{

// The first code of a class is its base + 1.
int errorOf(RESULT_CODE firstOfClass)
{
    return SwitchErrorReturn(firstOfClass - 1);
}

} // namespace

int SwitchErrorReturn(int classBase)
{
    const int first = classBase + 1;
    if (PLC_driver.pendingList.isEmpty())
        return first;
    const int ownerId = PLC_driver.pendingList.first().var.ownerId;
    return ownerId >= 0 && ownerId < RESULT_CLASS_SPAN ? first + ownerId : first;
}

int GetDriverReturnValue(int outcome)
{
    switch (outcome) {
    case OUTCOME_GOOD:
        return RESULT_GOOD;
    case OUTCOME_LOCAL_BAD_REPLY:
        return errorOf(RESULT_LOCAL_BAD_REPLY);
    case OUTCOME_LOCAL_NO_REPLY:
        return errorOf(RESULT_LOCAL_NO_REPLY);
    case OUTCOME_LOCAL_WRONG_LENGTH:
        return errorOf(RESULT_LOCAL_WRONG_LENGTH);
    case OUTCOME_REMOTE_NOT_STORED:
        return RESULT_REMOTE_NOT_STORED;
    case OUTCOME_REMOTE_BAD_REPLY:
        return errorOf(RESULT_REMOTE_BAD_REPLY);
    case OUTCOME_REMOTE_NO_REPLY:
        return errorOf(RESULT_REMOTE_NO_REPLY);
    case OUTCOME_REMOTE_WRONG_LENGTH:
        return errorOf(RESULT_REMOTE_WRONG_LENGTH);
    default:
        return RESULT_UNKNOWN_OUTCOME;
    }
}
