// The communication loop: every kind, probes, threads and the port. The rest are cases.
#include "host/core/loop/link_runner.h"
#include "tests/loop_under_test.h"

#include "host/core/line/port_error.h"
#include "host/core/line/replies.h"
#include "host/core/line/serial_port.h"
#include "host/plc/simulated_plc.h"

#include <QFile>
#include <QTemporaryDir>

using namespace velko;

class LoopTest : public testing::Test, public LoopUnderTest
{
};

TEST_F(LoopTest, EveryKindReadAndWritten)
{
    // Where a variable lies is written out and not asked of the driver: register on the line, its
    // lowest bit there, its bits.
    const struct Row {
        const char *place;
        int wireRegister;
        int shift;
        int bits;
        const char *newValue;
    } rows[] = {
        {"0:4.6", 2, 6, 1, nullptr},       {"3:21", 10, 8, 8, nullptr},
        {"6:12", 12, 0, 16, nullptr},      {"9:100", 200, 0, 32, nullptr},
        {"1:41.6", 20, 14, 1, "1"},        {"1:40.9", 20, 9, 1, "0"},
        {"4:44", 22, 0, 8, "195"},         {"4:45", 22, 8, 8, "61"},
        {"7:30", 30, 0, 16, "48879"},      {"10:20", 40, 0, 32, "305419896"},
        {"2:6.0", 5003, 0, 1, "1"},        {"5:11", 5005, 8, 8, "119"},
        {"8:250", 5250, 0, 16, "258"},     {"11:150", 5300, 0, 32, "3405705229"},
        {"7:31:u32/CDAB", 31, 0, 32, "7"}, {"7:400:u16", 400, 0, 16, "65535"},
    };
    const auto pairAt = [](const std::vector<uint16_t> &memory, int first) {
        return memory.at(static_cast<size_t>(first))
               | static_cast<uint32_t>(memory.at(static_cast<size_t>(first) + 1)) << 16;
    };
    const auto maskOf = [](const Row &row) {
        return row.bits == 32 ? 0xFFFFFFFFU : (1U << row.bits) - 1U;
    };
    for (const Row &row : rows)
        add(row.place, row.place, 2, row.newValue ? Access::READ_WRITE : Access::READ);
    link.maxRegs = 32;
    start();
    ASSERT_TRUE(readAll());
    std::vector<uint16_t> memory = plc.holdingRegisters(2);
    for (const Row &row : rows) {
        const uint32_t pair =
            pairAt(row.newValue ? memory : plc.inputRegisters(2), row.wireRegister);
        EXPECT_EQ(value(row.place), "good " + std::to_string(pair >> row.shift & maskOf(row)));
    }
    for (const Row &row : rows) {
        if (!row.newValue)
            continue;
        EXPECT_TRUE(write(row.place, row.newValue));
        const uint32_t kept = pairAt(memory, row.wireRegister) & ~(maskOf(row) << row.shift);
        const uint32_t pair = kept | static_cast<uint32_t>(std::stoul(row.newValue)) << row.shift;
        memory[static_cast<size_t>(row.wireRegister)] = static_cast<uint16_t>(pair);
        memory[static_cast<size_t>(row.wireRegister) + 1] = static_cast<uint16_t>(pair >> 16);
    }
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(plc.holdingRegisters(2), memory); // all of it: a bit beside the right one would show
    ASSERT_TRUE(readAll() && readAll());
    for (const Row &row : rows) {
        if (row.newValue) {
            EXPECT_EQ(value(row.place), std::string("good ") + row.newValue);
        }
    }
    EXPECT_EQ(counters(2).sent, counters(2).good);
}

TEST_F(LoopTest, AWholeCycleComesBetweenTwoProbes)
{
    const int requests = 6;
    for (int i = 0; i < requests; ++i)
        add(std::to_string(i).c_str(), ("7:" + std::to_string(200 * i)).c_str());
    add("dead", "7:0", 2);
    link.stationSettings[1].responseTimeout = 5000;
    start();
    ASSERT_TRUE(readAll());
    fault("2:silent");
    ASSERT_TRUE(turnUntil([this] { return !loop->status().isOnline(2); }));
    fault("1:late=400"); // a cycle takes longer than any pause between the first probes
    const size_t first = plc.requests().size();
    ASSERT_TRUE(turnUntil([this] { return requestsTo(1) >= 5 * requests; }, 20000));
    const std::vector<SeenRequest> seen = plc.requests();
    std::optional<int> others; // since the last probe
    int probes = 0;
    for (size_t i = first; i < seen.size(); ++i) {
        if (byteAt(seen[i].frame, 0) == 1) {
            others = others.value_or(requests) + 1;
            continue;
        }
        EXPECT_TRUE(!others || *others >= requests) << i;
        others = 0;
        ++probes;
    }
    EXPECT_GE(probes, 2);
}

TEST_F(LoopTest, MoreWritesThanATurnsBurst)
{
    for (int i = 0; i < 17; ++i)
        add(std::to_string(i).c_str(), ("7:" + std::to_string(10 * i)).c_str(), 1, Access::WRITE);
    replacedTime.reset(); // the runner has a thread of its own
    start();              // nothing to read: after each five writes a turn has nothing to send
    loop->close("test");
    LinkRunner runner(*loop);
    runner.start(MissingPort::FAIL);
    runner.post([this](CommunicationLoop &) {
        for (int i = 0; i < 17; ++i)
            EXPECT_TRUE(write(std::to_string(i).c_str(), "7"));
    });
    EXPECT_TRUE(waitFor([&] { return runner.isIdle(); }));
    runner.stop();
    for (size_t i = 0; i < 17; ++i)
        EXPECT_EQ(plc.holdingRegisters(1).at(10 * i), 7);
}

TEST_F(LoopTest, ThePortComesBackUnderAnotherName)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath("adapter");
    auto device = std::make_unique<SimulatedPlc>(threeStations());
    QFile::link(device->device(), name);
    replacedTime.reset();
    opener = SerialPort::open;
    link.line.devices = {name.toStdString()};
    link.line.responseTimeout = 10000;
    link.line.guardTime = 0;
    add("value", "6:12");
    add("word", "7:100", 2, Access::WRITE);
    add("more", "7:110", 2, Access::WRITE);
    start();
    ASSERT_TRUE(readAll());
    loop->close("test");

    LinkRunner runner(*loop);
    runner.start(MissingPort::FAIL);
    for (const bool isAwaited : {true, false}) { // a response, at the moment
        SCOPED_TRACE(isAwaited);
        device->setFault(2, parseFault(isAwaited ? "2:silent" : "2:none").fault);
        runner.post([this](CommunicationLoop &) { write("word", "5") && write("more", "5"); });
        ASSERT_TRUE(waitFor(
            [&] { return isAwaited ? requestsTo(2, device->requests()) > 0 : runner.isIdle(); }));
        taken(Event::PORT);
        auto next = std::make_unique<SimulatedPlc>(threeStations());
        ASSERT_NE(next->device(), device->device());
        device = std::move(next); // the old one hangs up
        ASSERT_TRUE(waitFor([this] { return !loop->status().isPortOpen(); }));
        EXPECT_EQ(value("value").substr(0, 11), "stale 38536");
        runner.post([this](CommunicationLoop &) { write("word", "6"); });
        ASSERT_TRUE(waitFor([&] { return runner.isIdle(); }));
        EXPECT_EQ(taken(Event::WRITE), isAwaited ? "word=5 failed\nmore=5 failed\nword=6 refused\n"
                                                 : "word=5 done\nmore=5 done\nword=6 refused\n");
        const std::string missing = name.toStdString() + " missing";
        ASSERT_TRUE(waitFor(
            [&] { return loop->status().portText().find("no such device") != std::string::npos; }));
        QFile::remove(name);
        QFile::link(device->device(), name);
        EXPECT_TRUE(waitFor([this] { return value("value") == "good 38536"; }));
        EXPECT_EQ(device->holdingRegisters(2).at(100), 45266); // nothing is carried out later
        EXPECT_EQ(device->holdingRegisters(2).at(110), 54000);
        const std::string events = taken(Event::PORT);
        EXPECT_NE(events.find(" disconnected\n" + missing + "\n" + device->device().toStdString()
                              + " open\n"),
                  std::string::npos)
            << events;
    }
}

TEST_F(LoopTest, AReadIsNotCutAfterAnotherStart)
{
    add("value", "6:12");
    start();
    loop->close("test");
    {
        LinkRunner runner(*loop);
        runner.start(MissingPort::FAIL);
        runner.requestStop(true);
        runner.stop();
        runner.start(MissingPort::FAIL);
    }
    Clock::sleepUntil(Clock::now() + 10 * ReadCut::PATIENCE);
    EXPECT_FALSE(loop->readCut().isDue());
}

TEST_F(LoopTest, AMissingPortAtTheStartIsReported)
{
    add("value", "6:12");
    start();
    loop->close("test");
    plc.plug(false);
    replacedTime.reset();
    LinkRunner runner(*loop);
    EXPECT_THROW(runner.start(MissingPort::FAIL), PortError);
}
