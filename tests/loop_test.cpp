// The communication loop on the simulated PLC: what becomes of values, writes, stations and the port.
#include "host/line/port_error.h"
#include "host/line/replies.h"
#include "host/loop/link_runner.h"
#include "host/plc/simulated_plc.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

SimulatedLineSettings threeStations()
{
    SimulatedLineSettings settings;
    settings.stations = {1, 2, 3};
    return settings;
}

class LoopTest : public testing::Test, public EventSink
{
public:
    LoopTest() : plc(std::make_unique<SimulatedPlc>(threeStations()))
    {
        link.name = "line";
        link.line.devices = {plc->device().toStdString()};
        link.line.baudRate = 115200;
        link.line.replyTimeout = 30;
        link.retries = 1;
    }

    /// "KIND:ADDRESS..." as in parseVariable.
    const Variable &add(const char *name, const char *place, int station = 1,
                        Access access = Access::READ)
    {
        Variable variable = parseVariable(place, station, access);
        variable.name = name;
        link.variables.push_back(variable);
        return link.variables.back();
    }

    const Variable &named(const std::string &name) const
    {
        return *std::find_if(link.variables.begin(), link.variables.end(),
                             [&](const Variable &variable) { return variable.name == name; });
    }

    void start()
    {
        loop = std::make_unique<CommunicationLoop>(DRIVER_LIBRARY, link,
                                                   RequestPlanner(DRIVER_LIBRARY).plan(link),
                                                   std::vector<LineTap *>(), *this);
        loop->open();
    }

    template <typename Condition> bool turnUntil(const Condition &condition, int time = 3000)
    {
        const Clock::time_point end = Clock::now() + milliseconds(time);
        while (!condition() && Clock::now() < end)
            loop->turn();
        return condition();
    }

    void turnFor(int time)
    {
        turnUntil([] { return false; }, time);
    }

    bool readAll()
    {
        const auto before = loop->status().cycles();
        return turnUntil([&] { return loop->status().cycles() > before; });
    }

    void reload() { loop->load(link, RequestPlanner(DRIVER_LIBRARY).plan(link)); }

    void fault(const char *text)
    {
        const StationFault parsed = parseFault(text);
        plc->setFault(parsed.station, parsed.fault);
    }

    bool write(const char *name, const std::string &text) { return loop->write(named(name), text); }

    bool writeAll()
    {
        return turnUntil([this] { return !loop->hasPendingWrites(); });
    }

    /// "good 38536"; "never read".
    std::string value(const char *name) const
    {
        const ValueState state = loop->status().stateOf(named(name));
        const std::string text =
            state.age ? " " + textOf(named(name), loop->value(named(name))) : "";
        const std::string refusal = state.refusal.text.empty() ? "" : ": " + state.refusal.text;
        return nameOf(state.freshness) + text + refusal;
    }

    StationCounters counters(int station) const
    {
        for (const StationStatus &status : loop->status().stations())
            if (status.station == station)
                return status.counters;
        return {};
    }

    int requestsTo(int station) const
    {
        const std::vector<SeenRequest> seen = plc->requests();
        return static_cast<int>(
            std::count_if(seen.begin(), seen.end(), [station](const SeenRequest &request) {
                return byteAt(request.frame, 0) == station;
            }));
    }

    void tell(const Event &event) override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const std::string value = event.kind == Event::WRITE ? "=" + event.value : "";
        m_events[event.kind] += event.name + value + " " + event.state + "\n";
    }

    std::string taken(Event::Kind kind)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::string events;
        events.swap(m_events[kind]);
        return events;
    }

    std::unique_ptr<SimulatedPlc> plc;
    Link link;
    std::unique_ptr<CommunicationLoop> loop;

private:
    std::mutex m_mutex;
    std::string m_events[3];
};

} // namespace

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
    std::vector<uint16_t> memory = plc->holdingRegisters(2);
    for (const Row &row : rows) {
        const uint32_t pair =
            pairAt(row.newValue ? memory : plc->inputRegisters(2), row.wireRegister);
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
    EXPECT_EQ(plc->holdingRegisters(2), memory); // all of it: a bit beside the right one would show
    ASSERT_TRUE(readAll() && readAll());
    for (const Row &row : rows) {
        if (row.newValue) {
            EXPECT_EQ(value(row.place), std::string("good ") + row.newValue);
        }
    }
    EXPECT_EQ(counters(2).sent, counters(2).good);
}

TEST_F(LoopTest, PlanOfSeveralStations)
{
    link.maxRegs = 10;
    add("a", "7:100:u16:25", 3);
    add("b", "8:0", 1);
    add("c", "6:5", 1);
    add("d", "6:12", 1);
    add("e", "7:0", 2, Access::WRITE);
    std::string plan;
    for (const PlannedRequest &request : RequestPlanner(DRIVER_LIBRARY).plan(link))
        plan += hexText(request.frame.left(6)) + "\n";
    EXPECT_EQ(plan, "01 04 00 05 00 08\n"
                    "01 03 13 88 00 01\n"
                    "03 03 00 64 00 0A\n"
                    "03 03 00 6E 00 0A\n"
                    "03 03 00 78 00 05\n");
}

TEST_F(LoopTest, AZeroThatWasNeverReadIsNoValue)
{
    add("there", "6:12");
    add("beyond", "6:1000");
    link.staleAfter = 200;
    start();
    EXPECT_EQ(value("there"), "never read");
    ASSERT_TRUE(readAll());
    EXPECT_EQ(value("there"), "good 38536");
    EXPECT_EQ(value("beyond"), "never read: exception 2 (illegal data address)");
    fault("1:exception=4");
    ASSERT_TRUE(readAll());
    EXPECT_EQ(value("there"), "stale 38536: exception 4 (slave device failure)");
    fault("1:none");
    ASSERT_TRUE(readAll());
    EXPECT_EQ(value("there"), "good 38536");
    QThread::msleep(250);
    EXPECT_EQ(value("there"), "stale 38536"); // by its age
}

TEST_F(LoopTest, ExceptionsAndDamageAreCountedAndCostNoStation)
{
    const struct {
        const char *fault;
        const char *refusal;
        StationCounters::Count StationCounters::*counter;
    } rows[] = {
        {"1:flip", "never read: wrong CRC", &StationCounters::badCrc},
        {"1:cut=4", "never read: wrong length: 4 of 7 bytes", &StationCounters::wrongLength},
        {"1:exception=11", "never read: exception 11 (gateway target silent)", nullptr},
    };
    add("value", "6:12");
    for (const auto &row : rows) {
        start();
        fault(row.fault);
        ASSERT_TRUE(readAll());
        EXPECT_EQ(value("value"), row.refusal);
        const StationCounters seen = counters(1);
        EXPECT_EQ(row.counter ? seen.*row.counter : seen.exceptions.at(11), 2) << row.fault;
        EXPECT_EQ(seen.sent, 2);
        EXPECT_EQ(seen.retries, 1);
        EXPECT_EQ(seen.givenUp, 1);
        EXPECT_EQ(taken(Event::STATION), "");
    }
}

TEST_F(LoopTest, OneAnswerInAllTriesIsNoSilence)
{
    add("value", "6:12");
    start();
    fault("1:flip");
    loop->turn();
    fault("1:silent");
    loop->turn();
    EXPECT_EQ(counters(1).givenUp, 1);
    EXPECT_TRUE(loop->status().isOn(1));
    turnUntil([this] { return counters(1).givenUp == 2; });
    EXPECT_FALSE(loop->status().isOn(1));
}

TEST_F(LoopTest, AnExceptionCostsNoTimeOut)
{
    add("beyond", "6:1000");
    link.line.replyTimeout = link.line.byteTimeout = 5000;
    start();
    const Clock::time_point begin = Clock::now();
    for (int i = 0; i < 10; ++i)
        ASSERT_TRUE(readAll());
    EXPECT_LT(Clock::now() - begin, milliseconds(2500));
}

TEST_F(LoopTest, EachRequestFailsForItsOwnFailures)
{
    for (const bool ownFailuresOnly : {true, false}) {
        link.variables.clear();
        add("a", "6:0");
        add("b", "6:500");
        link.ownFailuresOnly = ownFailuresOnly;
        start();
        fault("1:flip/3");
        turnFor(300);
        EXPECT_GT(counters(1).badCrc, 5);
        EXPECT_EQ(counters(1).givenUp == 0, ownFailuresOnly);
    }
}

TEST_F(LoopTest, ADeadStationDoesNotSlowTheOthers)
{
    for (const int station : {1, 2, 3})
        add(("s" + std::to_string(station)).c_str(), "6:12", station);
    start();
    turnFor(1000);
    const int usual = requestsTo(1);
    fault("2:silent");
    ASSERT_TRUE(turnUntil([this] { return !loop->status().isOn(2); }));
    EXPECT_EQ(taken(Event::STATION), "2 off\n");
    EXPECT_EQ(value("s2"), "station off 38793: no answer");

    const int before = requestsTo(1);
    const size_t seen = plc->requests().size();
    turnFor(1000);
    EXPECT_GT(requestsTo(1) - before, usual / 2);
    turnFor(1300);
    std::vector<Clock::time_point> probes;
    for (size_t i = seen; i < plc->requests().size(); ++i)
        if (byteAt(plc->requests()[i].frame, 0) == 2)
            probes.push_back(plc->requests()[i].arrival);
    ASSERT_EQ(probes.size(), 3U); // at once, half a second later, a second after that
    const milliseconds cost(60);  // time-out and guard
    EXPECT_GE(probes[1] - probes[0], milliseconds(500) + cost);
    EXPECT_LT(probes[1] - probes[0], milliseconds(800) + cost);
    EXPECT_GE(probes[2] - probes[1], milliseconds(1000) + cost);

    fault("2:none");
    ASSERT_TRUE(turnUntil([this] { return loop->status().isOn(2); }));
    EXPECT_EQ(taken(Event::STATION), "2 back\n");
    EXPECT_EQ(value("s2"), "good 38793");
}

TEST_F(LoopTest, WritesAndTheirFates)
{
    add("word", "7:100", 1, Access::READ_WRITE);
    add("text", "7:200:text:20", 1, Access::WRITE);
    add("bits", "1:1000.0:bit:1024", 1, Access::WRITE);
    add("input", "6:0");
    link.maxRegs = 4;
    start();
    // Ten registers in three pieces are one write.
    EXPECT_TRUE(write("text", "Box 12"));
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(taken(Event::WRITE), "text=Box 12 done\n");
    EXPECT_EQ(plc->holdingRegisters(1).at(202), 0x3132);
    EXPECT_EQ(value("text"), "good Box 12");

    EXPECT_TRUE(write("word", "1"));
    EXPECT_TRUE(write("word", "2"));
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(taken(Event::WRITE), "word=1 superseded\nword=2 done\n");
    EXPECT_EQ(plc->holdingRegisters(1).at(100), 2);

    EXPECT_FALSE(write("word", "65536"));
    EXPECT_FALSE(write("input", "1"));
    std::string zeros = "0";
    for (int i = 1; i < 1024; ++i)
        zeros += " 0";
    EXPECT_TRUE(write("bits", zeros));
    EXPECT_FALSE(write("word", "3")); // the queue is full
    EXPECT_EQ(taken(Event::WRITE), "word=65536 refused\ninput=1 refused\nword=3 refused\n");
    EXPECT_TRUE(turnUntil([this] { return !loop->hasPendingWrites(); }, 60000));
    EXPECT_EQ(taken(Event::WRITE), "bits=" + zeros + " done\n");

    fault("1:exception=4");
    EXPECT_TRUE(write("word", "4"));
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(taken(Event::WRITE), "word=4 failed\n");
    // The store shows what was to be written, but nobody takes it for the PLC's value.
    EXPECT_EQ(value("word"), "stale 4: a write failed, and it was not read since");
    fault("1:none");
    ASSERT_TRUE(readAll() && readAll());
    EXPECT_EQ(value("word"), "good 2");
}

TEST_F(LoopTest, MoreWritesThanATurnsBurst)
{
    for (int i = 0; i < 17; ++i)
        add(std::to_string(i).c_str(), ("7:" + std::to_string(10 * i)).c_str(), 1, Access::WRITE);
    start(); // nothing to read: after each five writes a turn has nothing to send
    loop->close("test");
    LinkRunner runner(*loop);
    runner.start();
    runner.post([this](CommunicationLoop &) {
        for (int i = 0; i < 17; ++i)
            EXPECT_TRUE(write(std::to_string(i).c_str(), "7"));
    });
    const Clock::time_point end = Clock::now() + milliseconds(3000);
    while (!runner.isIdle() && Clock::now() < end)
        QThread::msleep(1);
    EXPECT_TRUE(runner.isIdle());
    runner.stop();
    for (size_t i = 0; i < 17; ++i)
        EXPECT_EQ(plc->holdingRegisters(1).at(10 * i), 7);
}

TEST_F(LoopTest, GivenUpWritesAreOfferedAgain)
{
    add("word", "7:100", 1, Access::WRITE);
    link.retries = 0;
    link.offerAgain = 2;
    start();
    fault("1:exception=6");
    EXPECT_TRUE(write("word", "5"));
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(taken(Event::WRITE), "word=5 offered again\nword=5 offered again\nword=5 failed\n");
    fault("1:exception=6/2"); // the second of each two
    EXPECT_TRUE(write("word", "6"));
    EXPECT_TRUE(writeAll());
    EXPECT_TRUE(write("word", "7"));
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(taken(Event::WRITE), "word=6 done\nword=7 offered again\nword=7 done\n");
    EXPECT_EQ(plc->holdingRegisters(1).at(100), 7);
}

TEST_F(LoopTest, NoWriteWaitsForADeadStation)
{
    add("one", "7:100", 1, Access::READ_WRITE);
    add("a", "7:100", 2, Access::READ_WRITE);
    add("b", "4:300", 2, Access::READ_WRITE);
    link.offerAgain = 3;
    start();
    fault("2:silent");
    for (const char *name : {"a", "b", "one"})
        EXPECT_TRUE(write(name, "5"));
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(taken(Event::WRITE), "a=5 failed\nb=5 failed\none=5 done\n");
    for (const SeenRequest &request : plc->requests()) // the byte was not tried, as a probe for one
        EXPECT_NE(hexText(request.frame.left(4)), "02 03 00 96");
    EXPECT_FALSE(write("a", "6"));
    EXPECT_EQ(taken(Event::WRITE), "a=6 refused\n");
    const std::vector<uint16_t> memory = plc->holdingRegisters(2);
    fault("2:none");
    ASSERT_TRUE(turnUntil([this] { return loop->status().isOn(2); }));
    turnFor(200);
    EXPECT_EQ(plc->holdingRegisters(2), memory); // no command of minutes ago
    EXPECT_TRUE(write("a", "7"));
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(taken(Event::WRITE), "a=7 done\n");
}

TEST_F(LoopTest, AStationThatIsOnlyWrittenIsProbedWithARead)
{
    add("only", "10:2000:f32", 2, Access::WRITE);
    start();
    fault("2:silent");
    EXPECT_TRUE(write("only", "1"));
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(requestsTo(2), 2);
    ASSERT_TRUE(turnUntil([this] { return requestsTo(2) == 3; }));
    EXPECT_EQ(hexText(plc->requests().back().frame.left(6)), "02 03 0F A0 00 02");
    fault("2:exception=2"); // it is alive
    ASSERT_TRUE(turnUntil([this] { return loop->status().isOn(2); }));
    EXPECT_EQ(taken(Event::STATION), "2 off\n2 back\n");
    const int before = requestsTo(2);
    turnFor(100);
    EXPECT_EQ(requestsTo(2), before); // it is not polled
}

TEST_F(LoopTest, ReloadKeepsQueuedWritesAndValues)
{
    const Variable kept = add("kept", "6:12");
    add("word", "7:100", 1, Access::READ_WRITE);
    start();
    ASSERT_TRUE(readAll());
    fault("2:silent");
    EXPECT_TRUE(write("word", "5"));

    Link other = link;
    other.variables = {parseVariable("6:20", 2, Access::READ),
                       parseVariable("6:21", 3, Access::READ)};
    loop->load(other, RequestPlanner(DRIVER_LIBRARY).plan(other));
    EXPECT_EQ(textOf(kept, loop->value(kept)), "38536");
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(taken(Event::WRITE), "word=5 done\n");
    EXPECT_EQ(plc->holdingRegisters(1).at(100), 5);
    const int before = requestsTo(1);
    ASSERT_TRUE(turnUntil([this] { return !loop->status().isOn(2); }));
    ASSERT_TRUE(readAll());
    EXPECT_EQ(requestsTo(1), before);
    EXPECT_GT(requestsTo(3), 0);

    loop->load(link, RequestPlanner(DRIVER_LIBRARY).plan(link)); // without the dead station
    EXPECT_TRUE(loop->status().isOn(2));
    ASSERT_TRUE(readAll());
    EXPECT_EQ(value("word"), "good 5");
}

TEST_F(LoopTest, ReloadGivesANameAnotherPlace)
{
    add("first", "7:50", 1, Access::WRITE);
    add("x", "7:100", 1, Access::WRITE);
    start();
    EXPECT_TRUE(write("first", "1") && write("x", "5"));
    link.variables.back().address = "110";
    link.variables.back().station = 2;
    reload();
    EXPECT_TRUE(write("x", "6"));
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(taken(Event::WRITE), "first=1 done\nx=5 done\nx=6 done\n");
    EXPECT_EQ(plc->holdingRegisters(1).at(100), 5);
    EXPECT_EQ(plc->holdingRegisters(2).at(110), 6);
}

TEST_F(LoopTest, ReloadGivesAPlaceAnotherName)
{
    add("first", "7:50", 1, Access::WRITE);
    add("x", "7:100", 1, Access::WRITE);
    start();
    EXPECT_TRUE(write("first", "1") && write("x", "5"));
    link.variables.back().name = "y";
    reload();
    EXPECT_TRUE(write("y", "6"));
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(taken(Event::WRITE), "x=5 superseded\nfirst=1 done\ny=6 done\n");
    EXPECT_EQ(plc->holdingRegisters(1).at(100), 6);
}

TEST_F(LoopTest, ReloadRemovesAStationThatIsBeingAsked)
{
    add("a", "6:0", 1);
    add("r", "7:100", 2);
    start();
    fault("2:silent");
    ASSERT_TRUE(turnUntil([this] { return requestsTo(2) == 1; }));
    link.variables.pop_back();
    reload();
    turnFor(300);
    EXPECT_EQ(requestsTo(2), 1);
    EXPECT_EQ(taken(Event::STATION), "");
    EXPECT_TRUE(loop->status().isOn(2));
}

// The probe has begun, and its turn has not come: the port goes, or the variable is not read any more.
TEST_F(LoopTest, AProbeThatIsCutOff)
{
    for (const bool isReload : {false, true}) {
        SCOPED_TRACE(isReload);
        link.variables.clear();
        for (int i = 0; i < 8; ++i)
            add(std::to_string(i).c_str(), ("7:" + std::to_string(150 * i)).c_str(), 1,
                Access::READ_WRITE);
        add("two", "7:100", 2, isReload ? Access::READ_WRITE : Access::WRITE);
        start();
        fault("2:silent");
        EXPECT_TRUE(write("two", "1"));
        const int before = requestsTo(2);
        ASSERT_TRUE(turnUntil([&] { return requestsTo(2) == before + 3; }));
        QThread::msleep(600); // the next probe is due
        for (int i = 0; i < 8; ++i)
            EXPECT_TRUE(write(std::to_string(i).c_str(), "1"));
        loop->turn();
        link.variables.back().access = Access::WRITE;
        if (isReload) {
            reload();
        } else {
            loop->close("test");
            loop->open();
        }
        fault("2:none");
        EXPECT_TRUE(turnUntil([this] { return loop->status().isOn(2); }));
        taken(Event::WRITE);
        EXPECT_TRUE(write("two", "3"));
    }
}

TEST_F(LoopTest, AValueThatIsBeingWrittenIsNotCalledGood)
{
    add("w", "7:100", 2, Access::READ_WRITE);
    start();
    ASSERT_TRUE(readAll());
    fault("2:silent");
    EXPECT_TRUE(write("w", "4711"));
    loop->turn(); // the first of two tries
    EXPECT_EQ(value("w"), "stale 4711: a write is under way");
    EXPECT_TRUE(writeAll());
    EXPECT_EQ(value("w"), "station off 4711: a write failed, and it was not read since");
}

TEST_F(LoopTest, AWriteThatDoesNotFitAnyMoreIsNotOfferedAgain)
{
    add("wide", "7:100:u16:100", 1, Access::WRITE); // 50 pieces
    add("bits", "1:2000.0:bit:975", 2, Access::WRITE);
    link.offerAgain = 1;
    link.maxRegs = 2;
    link.retries = 0;
    start();
    std::string sevens = "7";
    std::string zeros = "0";
    for (int i = 1; i < 100; ++i)
        sevens += " 7";
    for (int i = 1; i < 975; ++i)
        zeros += " 0";
    EXPECT_TRUE(write("wide", sevens));
    ASSERT_TRUE(turnUntil([this] { return plc->holdingRegisters(1).at(101) == 7; }));
    EXPECT_TRUE(write("bits", zeros)); // the queue is full
    fault("1:exception=4");
    loop->turn();
    EXPECT_EQ(taken(Event::WRITE), "wide=" + sevens + " failed\n");
}

TEST_F(LoopTest, ThePortComesBackUnderAnotherName)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath("adapter");
    QFile::link(plc->device(), name);
    link.line.devices = {name.toStdString()};
    add("value", "6:12");
    add("word", "7:100", 2, Access::WRITE);
    add("more", "7:110", 2, Access::WRITE);
    start();
    ASSERT_TRUE(readAll());
    loop->close("test");

    LinkRunner runner(*loop);
    runner.start();
    const auto waitFor = [](const auto &condition) {
        const Clock::time_point end = Clock::now() + milliseconds(10000);
        while (!condition() && Clock::now() < end)
            QThread::msleep(1);
        return condition();
    };
    for (const bool isAwaited : {true, false}) { // an answer, at the moment
        SCOPED_TRACE(isAwaited);
        fault(isAwaited ? "2:silent" : "2:none");
        runner.post([this](CommunicationLoop &) { write("word", "5") && write("more", "5"); });
        ASSERT_TRUE(waitFor([&] { return isAwaited ? requestsTo(2) > 0 : runner.isIdle(); }));
        taken(Event::PORT);
        auto next = std::make_unique<SimulatedPlc>(threeStations());
        ASSERT_NE(next->device(), plc->device());
        plc = std::move(next); // the old one hangs up
        ASSERT_TRUE(waitFor([this] { return !loop->status().isPortOpen(); }));
        EXPECT_EQ(value("value").substr(0, 11), "stale 38536");
        runner.post([this](CommunicationLoop &) { write("word", "6"); });
        ASSERT_TRUE(waitFor([&] { return runner.isIdle(); }));
        EXPECT_EQ(taken(Event::WRITE), isAwaited ? "word=5 failed\nmore=5 failed\nword=6 refused\n"
                                                 : "word=5 done\nmore=5 done\nword=6 refused\n");
        const std::string missing = name.toStdString() + " not there";
        ASSERT_TRUE(waitFor(
            [&] { return loop->status().portText().find("no such device") != std::string::npos; }));
        QFile::remove(name);
        QFile::link(plc->device(), name);
        EXPECT_TRUE(waitFor([this] { return value("value") == "good 38536"; }));
        EXPECT_EQ(plc->holdingRegisters(2).at(100), 45266); // nothing is carried out later
        EXPECT_EQ(plc->holdingRegisters(2).at(110), 54000);
        const std::string events = taken(Event::PORT);
        EXPECT_NE(events.find(" lost\n" + missing + "\n" + plc->device().toStdString() + " open\n"),
                  std::string::npos)
            << events;
    }
}

TEST_F(LoopTest, APortThatIsNotThereAtTheStartIsTold)
{
    add("value", "6:12");
    start();
    loop->close("test");
    link.line.devices = {"/dev/none"};
    loop->load(link, {});
    LinkRunner runner(*loop);
    EXPECT_THROW(runner.start(), PortError);
}
