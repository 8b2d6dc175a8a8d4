// Shared by the fuzz programs: an input that is cut into arguments, and steps that check their
// results.
#pragma once

#include "velko_modbus_rtu.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <utility>

// Assertions find the faults, so they are enabled in every build type.
#undef NDEBUG
#include <cassert>

/// One input. The constructor resets the driver to its state after loading.
class Input : public FuzzedDataProvider
{
public:
    Input(const uint8_t *bytes, size_t size);
    bool isLeft() { return remaining_bytes() > 0 && m_steps++ < 40; }
    int below(int end) { return ConsumeIntegralInRange(0, end - 1); }
    int number(int low, int high); ///< mostly in the range, sometimes any number
    int length(int kind);          ///< length of a variable
    QString address(int kind);
    QByteArray bytes();
    RW_VAR record();
    QList<VAR_ITEM> items();
    void setComInfo();

private:
    ComInfo m_links[2];
    int m_steps = 0;
    bool m_hadLong = false;
};

/// Returns the registers that hold a part of a variable (first, end), computed without the library.
std::pair<qint64, qint64> registersOf(int kind, qint64 offset, qint64 length);

/// Takes the next frame, passes any reply, and checks the result.
void exchange(Input &input);

/// Passes a record of any content to one of the lists and checks its length.
void queue(Input &input);
