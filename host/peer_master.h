// A Modbus master that others wrote (mbpoll), to compare the driver's values with.
#pragma once

#include <QString>

#include <cstdint>
#include <vector>

/// Throws std::runtime_error where the program is not installed.
void requirePeer(const QString &program);

/// Reads `count` registers, 1 to 125, from register `first` (as numbered on the line) of a station.
/// `function` is 3 or 4. The device must not be open elsewhere. Throws std::runtime_error that says
/// what the program answered.
std::vector<uint16_t> readWithPeer(const QString &program, const QString &device, int station,
                                   int function, int first, int count);
