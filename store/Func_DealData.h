// Saving good read replies: into the store, or into the write half of a read-modify-write.
#pragma once

#include <QByteArray>

/// Saves a checked reply to the frame at the head of pendingList, which must not be empty.
/// Communication thread, storeMutex held.
void SaveToLocalDataErea(const QByteArray *reply);

/// Completes the write frame behind the head of pendingList with the register that was read.
/// Without such a frame, or with a reply too short to hold a register, nothing changes.
void SpecialRegisterSave(const QByteArray *reply);
