// The largest possible line: every register and every station. docs/limits.md describes the limits.
#include "tests/checked_line.h"

namespace
{

const int LAST_STATION = 247;

} // namespace

TEST(Limits, EveryRegisterOfEveryAreaIsReadAndWritten)
{
    for (const int maxRegs : {1, 125, 126, 1000}) {
        SCOPED_TRACE(maxRegs);
        CheckedLine line;
        line.link.maxRegs = maxRegs;
        const int first = maxRegs == 1 ? 60000 : 0; // one by one: only the last registers
        // In the third area, addresses exceed 65,535 from register 60,536 on.
        line.rebuild({{KIND_INPUT_WORD, QString::number(first), 1, 65536 - first},
                      {KIND_HOLDING_WORD, QString::number(first), 1, 65536 - first},
                      {KIND_HOLDING_5000_DWORD, QString::number(first / 2), 1, 60536 - first}});
        line.set({KIND_HOLDING_WORD, "0", 1, 65536}, 1, 1, 5);
        line.set({KIND_HOLDING_5000_BIT, "121071.0", 1, 8}, 1, 2, 6); // the last byte
        EXPECT_EQ(line.queued(), maxRegs == 1 ? 1024 : 65536 / maxRegs + 9);
        line.finishAndCheck();
    }
}

TEST(Limits, EveryStation)
{
    CheckedLine line;
    for (int station = 1; station <= LAST_STATION; ++station) {
        const PolledVariable word = {KIND_HOLDING_WORD, QString::number(station), station, 2};
        line.poll(word);
        line.set(word, station, 1, static_cast<unsigned>(station));
        line.set({KIND_HOLDING_BIT, "9.3", station, 1}, station, 1, 1);
        line.once({KIND_INPUT_BYTE, "7", station, 3}, station, 1);
    }
    for (int station = 1; station <= LAST_STATION; ++station)
        line.poll({KIND_INPUT_DWORD, "100", station, 2});
    for (int turn = 0; turn < 2000; ++turn) {
        line.enable(1 + turn % LAST_STATION, turn % 3 == 0);
        line.exchange(turn % 50 == 0 ? REPLY_LOST : NO_FAULT);
    }
    for (int station = 1; station <= LAST_STATION; ++station)
        line.enable(station, true);
    line.finishAndCheck();
}
