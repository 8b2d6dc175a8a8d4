// Saves valid read responses: in the store, or in the write half of a read-modify-write.
#pragma once

#include <QByteArray>

/// Saves a valid response to the frame at the head of pendingList, which must not be empty.
/// Communication thread, storeMutex held.
void SaveToLocalDataErea(const QByteArray *reply);

/// Completes the write frame that follows the head of pendingList with the register that was read.
/// If there is no such frame, or if the response is too short to hold a register, nothing changes.
void SpecialRegisterSave(const QByteArray *reply);
