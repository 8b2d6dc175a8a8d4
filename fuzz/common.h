// What the fuzz programs share: an input that is cut into arguments, and steps that check themselves.
#ifndef FUZZ_COMMON_H
#define FUZZ_COMMON_H

#include "driver/modbus_rtu_master.h"

#include <fuzzer/FuzzedDataProvider.h>

// Assertions are what finds faults, whatever the build type.
#undef NDEBUG
#include <cassert>

/// One input. Constructing it puts the driver back to where loading leaves it.
class Input : public FuzzedDataProvider
{
public:
    Input(const uint8_t *bytes, size_t size);
    bool isLeft() { return remaining_bytes() > 0 && m_steps++ < 40; }
    int below(int end) { return ConsumeIntegralInRange(0, end - 1); }
    int number(int low, int high); ///< mostly in the range, now and then any number
    int length(int kind);          ///< of a variable
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

/// Registers that hold any part of a variable, reckoned apart from the library: first and end.
std::pair<qint64, qint64> registersOf(int kind, qint64 offset, qint64 length);

/// Takes a frame, answers it in any way, and checks what becomes of both.
void exchange(Input &input);

/// Hands a record of any content to one of the lists, and checks their lengths.
void queue(Input &input);

#endif
