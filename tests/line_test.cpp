// The host's side, on a pseudo-terminal: a slave that others wrote, and none at all.
#include "host/device_poll.h"
#include "host/simulated_plc.h"

#include <gtest/gtest.h>

namespace
{

PollSettings settingsFor(const SimulatedPlc &plc, int station)
{
    PollSettings settings;
    settings.library = DRIVER_LIBRARY;
    settings.line.device = plc.device();
    settings.line.replyTimeout = 50;
    settings.station = station;
    settings.retryLimit = 0;
    settings.seconds = 1;
    settings.variables = {parseVariable("6:12"), parseVariable("1:40.9:3")};
    return settings;
}

} // namespace

TEST(Line, PollingASlave)
{
    const SimulatedPlc plc(17);
    testing::internal::CaptureStdout();
    EXPECT_TRUE(pollDevice(settingsFor(plc, 17)));
    const std::string output = testing::internal::GetCapturedStdout();
    // Register 12 holds 0x9688, register 20 has bits 9 to 11 of 0x9EE1.
    EXPECT_NE(output.find("input word                12          88 96\n"), std::string::npos);
    EXPECT_NE(output.find("holding bit               40.9        01 01 01\n"), std::string::npos);
    EXPECT_NE(output.find(" 0 repeated, 0 given up"), std::string::npos);
}

TEST(Line, ASlaveThatIsNotThereShowsNoValues)
{
    const SimulatedPlc plc(17);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(pollDevice(settingsFor(plc, 18)));
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_NE(output.find("no values are shown"), std::string::npos);
    EXPECT_NE(output.find(", 0 good"), std::string::npos);
}

TEST(Line, VariablesThatArePeoplesMistakes)
{
    for (const char *text : {"", "7", "7:1:2:3", "12:1", "-1:1", "x:1", "7:", "7:x", "7:-1", "1:5",
                             "1:5.x", "7:1:0", "7:1:x"})
        EXPECT_THROW(parseVariable(text), std::invalid_argument) << text;
    EXPECT_EQ(parseVariable("10:20:4").length, 4);
}
