// Host threads beside the communication loop, which runs as fast as it can. Under valgrind's
// helgrind (the test "races", scripts/check-races) this shows that every access takes its lock.
#include "tests/driver_under_test.h"
#include "tests/slave_memory.h"

#include <QDir>
#include <QTemporaryDir>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace
{

// Holding registers of station 1: a block that the slave fills with one increasing number; a block
// that a thread fills with one number; a double word whose halves are complements of each other; a
// register whose bits and bytes are written one by one; a register whose writes are never replaced.
const int COUNTED = 0;
const int WRITTEN = 200;
const int DWORD = 300;
const int SHARED = 400;
const int APPENDED = 420;
const int BLOCK = 100;

QByteArray filled(int value, int registers)
{
    QByteArray one(1, static_cast<char>(value));
    return one.append(static_cast<char>(value >> 8)).repeated(registers);
}

int firstOf(const QByteArray &registers)
{
    return static_cast<unsigned char>(registers.at(0))
           | static_cast<unsigned char>(registers.at(1)) << 8;
}

} // namespace

class ThreadsTest : public DriverTest
{
protected:
    /// Repeats an action on its own thread. The argument is the number of the turn.
    void beside(std::function<void(int)> action)
    {
        m_threads.emplace_back([this, action = std::move(action)] {
            for (int turn = 1; !m_stop; ++turn) {
                action(turn & 0x7FFF);
                m_warm += turn == 50;
                giveWay();
            }
        });
    }

    /// Valgrind runs one thread at a time; a thread that never waits would run for long.
    static void giveWay() { std::this_thread::sleep_for(std::chrono::microseconds(5)); }

    /// Returns whether every thread has had its first turns.
    bool areAllWarm() const { return m_warm == static_cast<int>(m_threads.size()); }

    void joinAll()
    {
        m_stop = true;
        for (std::thread &thread : m_threads)
            thread.join();
    }

    /// Returns a write of one number into all of the registers.
    RW_VAR filledWith(int first, int value, int registers) const
    {
        RW_VAR block;
        block.rwFlag = REQUEST_WRITE;
        block.areaNo = link.localArea;
        block.varKind = KIND_HOLDING_WORD;
        block.station = 1;
        block.addr = 2 * first;
        block.count = registers;
        block.value = filled(value, registers);
        return block;
    }

    /// Runs a turn; every sixteenth response is lost. Returns whether a frame was answered.
    bool exchange()
    {
        const Protocol *const request = driver.ComCommunication();
        if (!request)
            return false;
        const bool lost = ++m_sent % 16 == 0;
        const QByteArray reply =
            slaves.responseTo(request->frame).left(lost ? 0 : request->replyLen);
        EXPECT_EQ(driver.DataCom(&reply, reply.size())->retCode,
                  lost ? RESULT_WILL_REPEAT : RESULT_GOOD);
        return !lost;
    }

    QByteArray valueOf(int first, int length) const
    {
        QByteArray value;
        driver.GetRegisterData(0, KIND_HOLDING_WORD, QString::number(first), 1, &value, length);
        return value;
    }

    void set(int kind, const QString &address, const QByteArray &value, int length) const
    {
        driver.SetRegisterData("", kind, address, 1, &value, length, 1, 1);
    }

    void startReaders()
    {
        for (int reader = 0; reader < 2; ++reader) {
            beside(
                [this, seen = 0](int) mutable { // from a single reply, and not older than the last
                    const QByteArray block = valueOf(COUNTED, BLOCK);
                    torn += block != filled(firstOf(block), BLOCK) || firstOf(block) < seen;
                    seen = firstOf(block);
                });
        }
        beside([this](int) {
            const QByteArray block = valueOf(WRITTEN, BLOCK);
            torn += block != filled(firstOf(block), BLOCK);
            const QByteArray halves = valueOf(DWORD, 2);
            torn += firstOf(halves) != 0 && firstOf(halves) != (firstOf(halves.mid(2)) ^ 0xFFFF);
        });
    }

    void startWriters()
    {
        beside([this](int turn) {
            set(KIND_HOLDING_WORD, QString::number(WRITTEN), filled(turn, BLOCK), BLOCK);
            set(KIND_HOLDING_DWORD, QString::number(DWORD / 2),
                filled(turn, 1) + filled(turn ^ 0xFFFF, 1), 2);
            lastWritten = turn;
        });
        beside([this](int turn) { // four bits of the low byte, and the high byte
            set(KIND_HOLDING_BIT, QString("%1.%2").arg(2 * SHARED).arg(turn % 4), filled(1, 1), 1);
            set(KIND_HOLDING_BYTE, QString::number(2 * SHARED + 1), filled(0x5A, 1), 1);
            if (turn % 64 == 1)
                driver.customMessageHandler(QtDebugMsg, "bits");
        });
        beside([this](int turn) {
            const QList<VAR_ITEM> none; // makes idle turns
            driver.ReCreatReadVarList(turn % 2 == 0 ? &none : &items);
            RW_VAR once;
            once.varKind = KIND_INPUT_WORD;
            once.addrText = QString::number(turn % 50);
            once.areaNo = link.localArea;
            once.count = 3;
            driver.AddListOnceReadVar(&once, QUEUE_CHECKED);
            if (driver.AddListOnceReadVar(nullptr, QUEUE_UNCONDITIONALLY) < 20)
                driver.AddListOnceReadVar(&once, QUEUE_UNCONDITIONALLY); // converted above
            if (turn % 64 == 1)
                driver.customMessageHandler(QtDebugMsg, "list");
        });
        beside([this](int turn) {
            driver.EnCommStation(2 + turn % 2, turn % 3);
            if (driver.AddListWriteVar(nullptr, QUEUE_UNCONDITIONALLY) >= 20)
                return;
            const RW_VAR write = filledWith(APPENDED, turn, 1);
            driver.AddListWriteVar(&write, QUEUE_UNCONDITIONALLY);
            lastAppended = turn;
        });
    }

    const QList<VAR_ITEM> items = itemsFrom("7:0:100 7:200:100 10:150:2 7:400:1 8:7:3");
    SlaveMemory slaves; // used by the communication thread
    std::atomic<int> lastWritten{0};
    std::atomic<int> lastAppended{0};
    std::atomic<int> torn{0};

private:
    int m_sent = 0;
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_warm{0};
    std::vector<std::thread> m_threads;
};

TEST_F(ThreadsTest, NoTornOrOutdatedValueIsRead)
{
    const int exchanges = qMin(numberFrom("VELKO_EXCHANGES", SLOW_MACHINE ? 3000 : 20000), 0xFFFF);
    link.maxRegs = BLOCK;
    link.retryLimit = 1 << 30;
    driver.ReCreatReadVarList(&items);
    const QTemporaryDir folder; // for the log
    QDir::setCurrent(folder.path());

    startReaders();
    startWriters();
    slaves.write(filledWith(WRITTEN, 0, BLOCK));
    slaves.write(filledWith(DWORD, 0, 2));
    slaves.write(filledWith(SHARED, 0, 1));
    int done = 0;
    for (int turn = 0; (done < exchanges || !areAllWarm()) && turn < 2000000; ++turn) {
        if (turn % 8 == 0)
            giveWay();
        slaves.write(filledWith(COUNTED, qMin(done, 0xFFFF), BLOCK));
        done += exchange() ? 1 : 0;
    }
    EXPECT_TRUE(areAllWarm());
    joinAll();
    for (int turn = 0; turn < 4000; ++turn) // no thread queues any more
        exchange();

    QDir::setCurrent("/");
    EXPECT_GE(done, exchanges);
    EXPECT_EQ(torn, 0);
    EXPECT_TRUE(core.writeList.isEmpty() && core.onceReadList.isEmpty());
    for (int i = 0; i < BLOCK; ++i)
        ASSERT_EQ(slaves.read(1, AREA_HOLDING, WRITTEN + i), lastWritten) << i;
    EXPECT_EQ(slaves.read(1, AREA_HOLDING, DWORD), lastWritten);
    EXPECT_EQ(slaves.read(1, AREA_HOLDING, DWORD + 1), lastWritten ^ 0xFFFF);
    EXPECT_EQ(slaves.read(1, AREA_HOLDING, SHARED), 0x5A0F);
    EXPECT_EQ(slaves.read(1, AREA_HOLDING, APPENDED), lastAppended);
}
