// Every fault in every exchange: a mixed run in which one exchange fails, and long runs in which
// many fail.
#include "tests/checked_line.h"

#include <malloc.h>

#include <random>

#ifdef __SANITIZE_ADDRESS__
extern "C" size_t __sanitizer_get_current_allocated_bytes(); // Debian packages no header for GCC
#endif

namespace
{

/// Makes the calls of the host before a given exchange. Station 4 stays disabled, station 3 does
/// not.
void actBefore(int exchange, CheckedLine &line)
{
    switch (exchange) {
    case 0:
        line.link.maxRegs = 6;
        line.enable(3, false);
        line.enable(4, false);
        line.rebuild({{KIND_HOLDING_WORD, "0", 1, 3},
                      {KIND_HOLDING_BIT, "20.3", 1, 20},
                      {KIND_HOLDING_5000_BYTE, "7", 1, 2},
                      {KIND_INPUT_DWORD, "10", 1, 3}});
        line.poll({KIND_HOLDING_WORD, "20", 2, 4});
        line.poll({KIND_HOLDING_WORD, "20", 4, 4});
        line.poll({KIND_INPUT_WORD, "5", 2, 2});
        break;
    case 2:
        line.set({KIND_HOLDING_BIT, "1.6", 1, 3}, 3, 1, 71); // last bits of register 0, one of 1
        line.set({KIND_HOLDING_BYTE, "3", 1, 2}, 4, 2, 72);  // next to that bit
        line.once({KIND_INPUT_WORD, "30", 1, 8}, 5, 3);
        break;
    case 5:
        line.set({KIND_HOLDING_WORD, "100", 1, 14}, 6, 4, 73); // three pieces
        line.set({KIND_HOLDING_5000_BIT, "5.0", 2, 1}, 7, 5, 74);
        line.set({KIND_HOLDING_WORD, "21", 3, 2}, 8, 6, 75);
        line.once({KIND_HOLDING_5000_BIT, "8.6", 2, 30}, 9, 7);
        line.once({KIND_HOLDING_5000_BIT, "8.6", 2, 30}, 9, 7); // already queued
        break;
    case 8:
        line.set({KIND_HOLDING_WORD, "100", 1, 14}, 12, 8, 76); // replaces a queued write
        line.set({KIND_HOLDING_5000_BYTE, "81", 2, 1}, 3, 1, 77);
        line.set({KIND_HOLDING_DWORD, "10", 2, 3}, 3, 1, 78); // ends together with the one above
        line.set({KIND_HOLDING_5000_DWORD, "2", 1, 8}, -5, 9, 79);
        break;
    case 20:
        line.enable(3, true);
        line.set({KIND_HOLDING_5000_WORD, "3", 1, 2}, 13, 10, 81);
        break;
    case 24:
        line.rebuild({{KIND_HOLDING_WORD, "0", 1, 3}, {KIND_HOLDING_BYTE, "200", 1, 3}});
        line.poll({KIND_HOLDING_5000_WORD, "20", 2, 4});
        break;
    default:
        break;
    }
}

struct SweepRow {
    int retryLimit;
    int perVarStation;
    int lasting; // failed exchanges
};

// The output becomes part of the test's name.
void PrintTo(const SweepRow &row, std::ostream *out)
{
    *out << "limit" << row.retryLimit << "_perVar" << row.perVarStation << "_failed" << row.lasting;
}

/// Makes a mixed run in which exchange `failing` fails. Returns the length of its reply.
int mixedRun(const SweepRow &row, int exchanges, int failing, LineFault fault, int bit)
{
    CheckedLine line;
    line.link.retryLimit = row.retryLimit;
    line.link.perVarStation = row.perVarStation;
    int bytes = 0;
    int acted = -1;
    for (int turn = 0; turn < 300 && (line.exchanges < exchanges || line.queued() > 0); ++turn) {
        const int exchange = line.exchanges;
        if (acted < exchange)
            actBefore(acted = exchange, line);
        if (turn % 3 == 0)
            line.passTime();
        const bool fails = exchange >= failing && exchange < failing + row.lasting;
        line.exchange(fails ? fault : NO_FAULT, bit);
        if (exchange == failing)
            bytes = line.replyBytes;
    }
    line.finishAndCheck();
    return bytes;
}

// The allocator counts the free blocks that it keeps for reuse as used, up to some hundred thousand
// bytes. A leak of one block in fifty exchanges exceeds this limit.
const size_t MOST_GROWTH = 524288;

size_t bytesInUse()
{
#ifdef __SANITIZE_ADDRESS__
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}

} // namespace

class FaultSweep : public ::testing::TestWithParam<SweepRow>
{
};

TEST_P(FaultSweep, OfAMixedRun)
{
    const int exchanges = 45;
    const int bitStep = SLOW_MACHINE ? 11 : 1;
    int runs = 0;
    for (int failing = 0; failing < exchanges; ++failing) {
        int bits = bitStep;
        for (int fault = REQUEST_LOST; fault <= BIT_FLIPPED; ++fault) {
            const int last = fault == BIT_FLIPPED ? bits : bitStep;
            for (int bit = failing % bitStep; bit < last; bit += bitStep, ++runs)
                bits =
                    8
                    * mixedRun(GetParam(), exchanges, failing, static_cast<LineFault>(fault), bit);
            ASSERT_FALSE(HasFailure()) << "exchange " << failing << ", fault " << fault;
            ASSERT_GT(bits, 0);
        }
    }
    std::cout << runs << " runs of " << exchanges << " exchanges with one fault each\n";
}

INSTANTIATE_TEST_SUITE_P(Rows, FaultSweep,
                         ::testing::Values(SweepRow{0, 1, 1}, SweepRow{0, 0, 1}, SweepRow{2, 1, 1},
                                           SweepRow{2, 1, 3}));

namespace
{

class RandomHost
{
public:
    RandomHost(CheckedLine &line, int seed) : m_line(line), m_random(static_cast<unsigned>(seed)) {}

    /// Makes a call from time to time. There are few owners, so that their requests meet in the
    /// queues.
    void act()
    {
        const PolledVariable target = some();
        const int choice = below(300);
        if (choice == 0) {
            m_line.rebuild({some(), some(), some(), some()});
            m_line.poll({KIND_HOLDING_WORD, QString::number(below(99)), 2, 1 + below(4)});
            m_line.poll({KIND_HOLDING_5000_WORD, QString::number(below(99)), 3, 1 + below(4)});
        } else if (choice == 1) {
            m_line.enable(target.station, below(3) > 0);
        } else if (choice == 2) {
            m_line.link.retryLimit = below(4);
        } else if (choice == 3) {
            m_line.passTime();
        } else if (choice == 4 && below(50) == 0) { // more than fits into the queue
            m_line.set({KIND_HOLDING_BIT, "0.0", target.station, 1200}, below(14), below(3), 1);
        } else if (choice < 10 || (choice < 30 && target.kind % 3 == 0)) {
            m_line.once(target, below(14), below(3));
        } else if (choice < 30) {
            m_line.set(target, below(14), below(3), static_cast<unsigned>(below(1 << 30)));
        }
    }

    /// Makes one exchange. One exchange in twelve fails; sometimes the cable is disconnected for a
    /// while.
    void exchange()
    {
        if (m_untilCableIsBack-- == 0)
            m_untilCableIsBack = below(4000);
        const int fault = m_untilCableIsBack < 60 ? REQUEST_LOST
                          : below(12) == 0        ? 1 + below(BIT_FLIPPED)
                                                  : NO_FAULT;
        m_line.exchange(static_cast<LineFault>(fault), below(10000));
    }

    /// Enables all stations and checks the final state.
    void settle()
    {
        for (int station = 1; station <= 3; ++station)
            m_line.enable(station, true);
        m_line.finishAndCheck();
    }

private:
    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

    PolledVariable some()
    {
        const int kind = below(12);
        const int unitsOfArea[] = {38, 300, 150, 75};
        QString address = QString::number(below(unitsOfArea[kind / 3]));
        if (kind < KIND_INPUT_BYTE)
            address += "." + QString::number(below(8));
        return {kind, address, 1 + below(3), 1 + below(9)};
    }

    CheckedLine &m_line;
    std::mt19937 m_random;
    int m_untilCableIsBack = 4000;
};

} // namespace

TEST(RandomFaults, NoRequestIsLostOrInvented)
{
    const int exchanges = numberFrom("VELKO_EXCHANGES", SLOW_MACHINE ? 60000 : 1000000);
    const int seed = numberFrom("VELKO_SEED", 20);
    std::cout << "seed " << seed << ", " << exchanges << " exchanges\n";
    CheckedLine line;
    line.link.maxRegs = 6;
    RandomHost host(line, seed);
    size_t bytesBefore = 0;
    for (int part = 1; part <= 20; ++part) {
        const int end = exchanges / 20 * part;
        for (int turn = 0; line.exchanges < end && turn < exchanges && !HasFailure(); ++turn) {
            host.act();
            host.exchange();
        }
        host.settle();
        line.link.perVarStation = part % 3 > 0 ? 1 : 0;
        ASSERT_FALSE(HasFailure()) << "seed " << seed << ", after exchange " << line.exchanges;
        if (part == 2)
            bytesBefore = bytesInUse();
    }
    EXPECT_GE(line.exchanges, exchanges / 20 * 20);
    const size_t bytesAfter = bytesInUse();
    EXPECT_LT(bytesAfter, bytesBefore + MOST_GROWTH);
    std::cout << line.exchanges << " exchanges, " << bytesBefore << " bytes in use after a tenth, "
              << bytesAfter << " at the end\n";
}
