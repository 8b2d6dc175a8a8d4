// The judgement of replies: what the answer to the frame on the line is worth.
#pragma once

#include <QByteArray>

// Both judge the first `length` bytes of a reply to the frame at the head of pendingList, which
// must not be empty, save what it carries, and return a result code. `reply` holds no more than
// `length` bytes. Communication thread; take storeMutex.
int DealDataOfLocalArea(const QByteArray *reply, int length);
int DealDataOfRemoteArea(const QByteArray *reply, int length);
