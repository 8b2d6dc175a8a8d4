// The host's side, on a pseudo-terminal: a slave that others wrote, and none at all.
#include "host/device_poll.h"
#include "host/simulated_plc.h"

#include <gtest/gtest.h>

namespace
{

/// What pollDevice prints and returns.
struct Poll {
    Poll(const SimulatedPlc &plc, int station, const std::vector<const char *> &variables)
    {
        PollSettings settings;
        settings.library = DRIVER_LIBRARY;
        settings.line.device = plc.device();
        settings.line.replyTimeout = 50;
        settings.station = station;
        settings.seconds = 1;
        for (const char *text : variables)
            settings.variables.push_back(parseVariable(text));
        testing::internal::CaptureStdout();
        good = pollDevice(settings);
        output = testing::internal::GetCapturedStdout();
    }

    bool shows(const char *text) const { return output.find(text) != std::string::npos; }

    bool good;
    std::string output;
};

const int STATION = 17;

} // namespace

TEST(Line, ValuesOfASlave)
{
    const SimulatedPlc plc(STATION);
    // Input registers 12 and 13 hold 0x9688 and 0xA18F, holding register 20 holds 0x9EE1.
    const Poll poll(plc, STATION, {"6:12:2", "1:40.15:2", "4:41", "9:6:1", "8:0"});
    EXPECT_TRUE(poll.good) << poll.output;
    EXPECT_TRUE(poll.shows("  input word                12          9688\n")) << poll.output;
    EXPECT_TRUE(poll.shows("  input word                13          A18F\n"));
    EXPECT_TRUE(poll.shows("  holding bit               41.7        1\n"));
    EXPECT_TRUE(poll.shows("  holding bit               42.0        0\n"));
    EXPECT_TRUE(poll.shows("  holding byte              41          9E\n"));
    EXPECT_TRUE(poll.shows("  input double word         6           A18F9688\n"));
    EXPECT_TRUE(poll.shows("  holding 5000 word         0           FD3D\n"));
    EXPECT_TRUE(poll.shows(" 0 repeated, 0 given up"));
}

// The driver's cycleDone never comes true on this line.
TEST(Line, ALineThatLosesAnswers)
{
    SimulatedPlc plc(STATION);
    plc.loseEvery(3);
    const Poll poll(plc, STATION, {"6:0", "6:500", "7:0"});
    EXPECT_TRUE(poll.good) << poll.output;
    EXPECT_TRUE(poll.shows("input word                500         9BE0\n")) << poll.output;
    EXPECT_FALSE(poll.shows(" 0 repeated"));
}

TEST(Line, WhatCannotBeReadHidesNothingElse)
{
    const SimulatedPlc plc(STATION);
    const Poll poll(plc, STATION, {"6:12", "6:2000"});
    EXPECT_FALSE(poll.good);
    EXPECT_TRUE(poll.shows("12          9688\n")) << poll.output;
    EXPECT_TRUE(poll.shows("2000        not read: exception 2 (illegal data address)\n"));
}

TEST(Line, ASlaveThatIsNotThere)
{
    const SimulatedPlc plc(STATION);
    const Poll poll(plc, STATION + 1, {"6:12"});
    EXPECT_FALSE(poll.good);
    EXPECT_TRUE(poll.shows("12          not read: no answer\n")) << poll.output;
    EXPECT_TRUE(poll.shows(", 0 good")) << poll.output;
}

TEST(Line, VariablesThatArePeoplesMistakes)
{
    for (const char *text :
         {"", "7", "7:1:2:3", "12:1", "-1:1", "x:1", "7:", "7:x", "7:-1", "7: 1", "1:5", "1:5.x",
          "7:1:0", "7:1:x", "7:65535:2", "8:60536", "10:32768", "4:131072", "1:131071.8"})
        EXPECT_THROW(parseVariable(text), std::invalid_argument) << text;
    for (const char *text : {"7:65535", "8:60535", "10:32767", "4:131071", "1:131071.7", "7:010"})
        EXPECT_NO_THROW(parseVariable(text)) << text;
}
