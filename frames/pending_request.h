// Puts the frames of one request on pendingList.
#pragma once

#include "velko_modbus_rtu.h"

#include <QByteArray>

/// Returns a Protocol with these fields; frameLen is the size of `frame`. Takes over the bytes of
/// `frame`.
Protocol requestOf(QByteArray &&frame, const RW_VAR &record, int replyLen, int dataOffset = 0,
                   int dataLen = 0);

// Both append the frames to pendingList, which must be empty, and set frameTotal and frameDone in
// the host's ComInfo. Communication thread, listMutex held.
void queueRequest(const Protocol &only);
void queueRequest(const Protocol &first, const Protocol &second);
