// The judgement of replies, and what becomes of the request.
#ifndef DRIVER_REPLY_HANDLING_H
#define DRIVER_REPLY_HANDLING_H

#include "driver/records.h"

// Both judge the first `length` bytes of a reply to the frame at the head of pendingList, which
// must not be empty, save what it carries, and return a result code. `reply` holds no more than
// `length` bytes. Communication thread; take storeMutex.
int DealDataOfLocalArea(const QByteArray *reply, int length);
int DealDataOfRemoteArea(const QByteArray *reply, int length);

/// Copies every field but `value`, which is emptied.
void passRetValue(const RW_VAR &from, RW_VAR &to);

#endif
