// The frames of one request, on their way to pendingList.
#pragma once

#include "driver/records.h"

/// A whole frame, whose bytes it takes over, its record, and the reply that it expects: Protocol's
/// fields of these names.
Protocol requestOf(QByteArray &&frame, const RW_VAR &record, int replyLen, int dataOffset = 0,
                   int dataLen = 0);

// Both append the frames to pendingList, which is empty, and mark the start of the request in the
// host's ComInfo. Communication thread, listMutex held.
void queueRequest(const Protocol &only);
void queueRequest(const Protocol &first, const Protocol &second);
