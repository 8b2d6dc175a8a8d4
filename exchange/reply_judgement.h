// Checks the response to the frame on the line and saves its data.
#pragma once

#include <QByteArray>

// Both check a response of `length` bytes to the frame at the head of pendingList, which must not
// be empty, save its data and return a result code. `reply` holds at most `length` bytes; if it
// holds fewer, the response is invalid. Communication thread; both take storeMutex.
int DealDataOfLocalArea(const QByteArray *reply, int length);
int DealDataOfRemoteArea(const QByteArray *reply, int length);
