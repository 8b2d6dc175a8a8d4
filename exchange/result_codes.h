// Outcomes of checked responses and the result codes that the host receives for them.
#pragma once

enum ReplyOutcome {
    OUTCOME_GOOD = 0,
    OUTCOME_LOCAL_BAD_REPLY = 1,
    OUTCOME_LOCAL_NO_REPLY = 2,
    OUTCOME_LOCAL_WRONG_LENGTH = 3,
    OUTCOME_REMOTE_NOT_STORED = 4, // good; or stored while frameDone was 1
    OUTCOME_REMOTE_BAD_REPLY = 5,
    OUTCOME_REMOTE_NO_REPLY = 6,
    OUTCOME_REMOTE_WRONG_LENGTH = 7
};

/// Returns the RESULT_... code of an outcome, or RESULT_UNKNOWN_OUTCOME for any other number.
int GetDriverReturnValue(int outcome);

/// Returns classBase + 1, plus the ownerId of the frame on the line if that is 0 to 11.
int SwitchErrorReturn(int classBase);
