// One link as a host uses it: writes with their results, snapshots, another list of variables.
#include "host/core/line/port_error.h"
#include "host/core/session/link_session.h"
#include "host/plc/simulated_plc.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

using namespace velko;

namespace
{

class Results : public EventSink
{
public:
    void receive(const Event &event) override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (kindOf(event.state) == Event::WRITE)
            m_results[event.write] = nameOf(event.state);
    }

    std::map<int, std::string> all() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_results;
    }

private:
    mutable std::mutex m_mutex;
    std::map<int, std::string> m_results; // by number: the last event
};

Variable word(const std::string &name, const char *place, Access access = Access::READ_WRITE)
{
    Variable variable = parseVariable(place, 1, access);
    variable.name = name;
    return variable;
}

struct SessionUnderTest {
    SessionUnderTest()
    {
        link.name = "line";
        link.line.devices = {plc.device().toStdString()};
        link.line.baudRate = 115200;
        link.variables = {word("a", "7:100"), word("b", "7:110"), word("c", "6:12", Access::READ)};
        session =
            std::make_unique<LinkSession>(DRIVER_LIBRARY, link, std::vector<LineTap *>(), results);
        session->start();
    }

    template <typename Condition> static bool waitFor(const Condition &condition)
    {
        const Clock::time_point end = Clock::now() + milliseconds(10000);
        while (!condition() && Clock::now() < end)
            QThread::msleep(1);
        return condition();
    }

    /// "NAME=VALUE STATE" of the first variable.
    std::string shown() const
    {
        const ValueRow row = session->snapshot().values.front();
        return row.variable.name + "=" + row.text + " " + nameOf(row.state.freshness);
    }

    SimulatedPlc plc{SimulatedLineSettings()};
    Link link;
    Results results;
    std::unique_ptr<LinkSession> session;
};

} // namespace

TEST(LinkSession, WritesHaveNumbersAndResults)
{
    SessionUnderTest test;
    EXPECT_EQ(test.session->write("none", "1"), 0);
    EXPECT_EQ(test.session->write("a", "4711"), 1);
    EXPECT_EQ(test.session->write("b", "x"), 2);
    EXPECT_EQ(test.session->write("c", "1"), 3);
    ASSERT_TRUE(SessionUnderTest::waitFor([&] { return test.session->isIdle(); }));
    const std::map<int, std::string> expected = {{1, "done"}, {2, "refused"}, {3, "refused"}};
    EXPECT_EQ(test.results.all(), expected);
    EXPECT_EQ(test.plc.holdingRegisters(1).at(100), 4711);
    EXPECT_TRUE(SessionUnderTest::waitFor([&] { return test.shown() == "a=4711 good"; }));
}

TEST(LinkSession, AnotherListOfVariables)
{
    SessionUnderTest test;
    test.link.variables = {word("d", "6:12", Access::READ)};
    test.session->reload(test.link);
    EXPECT_EQ(test.session->write("a", "1"), 0);
    EXPECT_TRUE(SessionUnderTest::waitFor([&] { return test.shown() == "d=38536 good"; }));
    EXPECT_TRUE(SessionUnderTest::waitFor([&] { return test.session->cycles() > 0; }));
}

TEST(LinkSession, EveryWriteBeforeTheEndHasAResult)
{
    for (const bool isPaused : {false, true}) { // then the thread ends without another turn
        SessionUnderTest test;
        if (isPaused)
            test.session->pause(milliseconds(10000));
        for (int number = 1; number <= 5; ++number)
            EXPECT_EQ(test.session->write(number % 2 == 0 ? "a" : "b", "1"), number);
        test.session->stop();
        EXPECT_EQ(test.results.all().size(), 5U);
    }
}

TEST(LinkSession, StartsAgain)
{
    SessionUnderTest test;
    for (int i = 0; i < 3; ++i) {
        test.session->stop();
        const auto before = test.session->cycles();
        test.session->start();
        EXPECT_TRUE(SessionUnderTest::waitFor([&] { return test.session->cycles() > before; }));
    }
    test.session->stop();
    Link elsewhere = test.link;
    elsewhere.line.devices = {"/dev/none"};
    LinkSession missing(DRIVER_LIBRARY, elsewhere, {}, test.results);
    EXPECT_THROW(missing.start(), PortError);
    EXPECT_THROW(missing.start(), PortError);
    missing.reload(test.link);
    EXPECT_EQ(missing.write("a", "1"), 1); // refused: nothing is open yet
    missing.start();
    EXPECT_TRUE(SessionUnderTest::waitFor([&] { return test.results.all()[1] == "refused"; }));
    EXPECT_TRUE(SessionUnderTest::waitFor([&] { return missing.cycles() > 0; }));
}

TEST(LinkSession, RefusesALinkThatCannotWork)
{
    SessionUnderTest test;
    const std::function<void(Link &)> mistakes[] = {
        [](Link &link) { link.line.devices.clear(); },
        [](Link &link) { link.line.baudRate = 0; },
        [](Link &link) { link.line.stopBits = 3; },
        [](Link &link) { link.line.responseTimeout = 0; },
        [](Link &link) { link.line.interCharacterTimeout = -1; },
        [](Link &link) { link.line.guardTime = -1; },
        [](Link &link) { link.line.minFrameGap = -1; },
        [](Link &link) { link.maxRegs = 0; },
        [](Link &link) { link.maxRegs = 99; },
        [](Link &link) { link.retries = -1; },
        [](Link &link) { link.stationSettings[1].maxRegs = 3; },
        [](Link &link) { link.stationSettings[1].retries = -1; },
        [](Link &link) { link.stationSettings[1].responseTimeout = 0; },
        [](Link &link) { link.stationSettings[248] = {}; },
        [](Link &link) { link.queueAgain = -1; },
        [](Link &link) { link.staleAfter = 0; },
        [](Link &link) { link.variables.front().station = 248; },
        [](Link &link) { link.variables.front().kind = 12; },
        [](Link &link) { link.variables.front().address = "abc"; },
    };
    for (size_t i = 0; i < std::size(mistakes); ++i) {
        SCOPED_TRACE(i);
        Link link = test.link;
        mistakes[i](link);
        EXPECT_THROW(test.session->reload(link), std::invalid_argument);
    }
    EXPECT_EQ(test.session->link()->variables.size(), 3U);
}
