// Which request goes out next.
#include "tests/driver_test.h"

class SchedulerTest : public DriverTest
{
protected:
    void addWrites(int count, int station = 1)
    {
        for (int i = 0; i < count; ++i) {
            RW_VAR record = write(KIND_HOLDING_WORD, 2 * core.writeList.size(), 1, "00 00");
            record.station = station;
            driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
        }
    }

    void addOnce(int count, int station = 1)
    {
        for (int i = 0; i < count; ++i) {
            RW_VAR record = read(AREA_INPUT, i, 1);
            record.station = station;
            driver.AddListOnceReadVar(&record, QUEUE_UNCONDITIONALLY);
        }
    }

    void addCyclic(int firstRegister, int station = 1)
    {
        RW_VAR record = read(AREA_HOLDING, firstRegister, 1);
        record.station = station;
        driver.AddListReadVar(&record);
    }

    /// One letter per turn: Write, Once, Cyclic, or - for none.
    std::string turns(int count)
    {
        std::string letters;
        for (int i = 0; i < count; ++i) {
            const std::string frame = serve(2);
            if (frame.empty())
                letters += '-';
            else
                letters += frame.substr(3) == "10" ? 'W' : frame.substr(3) == "04" ? 'O' : 'C';
        }
        return letters;
    }
};

TEST_F(SchedulerTest, OrderOfTurns)
{
    addWrites(7);
    addOnce(1);
    addCyclic(100);
    EXPECT_EQ(turns(10), "WWWWWOCWWC");

    addWrites(12);
    addOnce(7);
    EXPECT_EQ(turns(24), "WWWWWOOOOOCWWWWWOOCWWCCC");
}

TEST_F(SchedulerTest, ATurnThatEndsABurstMayHaveNothing)
{
    addWrites(7);
    EXPECT_EQ(turns(9), "WWWWW-WW-");
    EXPECT_EQ(info.cycleDone, 1);
    addOnce(7);
    EXPECT_EQ(turns(9), "OOOOO-OO-");
}

TEST_F(SchedulerTest, NothingToSend)
{
    EXPECT_EQ(core.activeSource, 100);
    core.writeBurst = 3;
    core.onceBurst = 4;
    EXPECT_EQ(driver.ComCommunication(), nullptr);
    EXPECT_EQ(info.cycleDone, 1);
    EXPECT_EQ(core.writeBurst, 0);
    EXPECT_EQ(core.onceBurst, 0);
    EXPECT_EQ(core.activeSource, 100);
}

TEST_F(SchedulerTest, APendingFrameIsReturnedAgain)
{
    addCyclic(1);
    const Protocol *const request = driver.ComCommunication();
    ASSERT_NE(request, nullptr);
    addWrites(1);
    EXPECT_EQ(driver.ComCommunication(), request);
    EXPECT_EQ(core.activeSource, SOURCE_CYCLIC);
    EXPECT_EQ(core.writeBurst, 0);
}

TEST_F(SchedulerTest, CyclicReadsGoRound)
{
    addCyclic(1);
    addCyclic(2);
    addCyclic(3);
    EXPECT_EQ(serve(), "01 03 00 01");
    EXPECT_EQ(serve(), "01 03 00 02");
    EXPECT_EQ(serve(), "01 03 00 03");
    EXPECT_EQ(serve(), "01 03 00 01");
}

TEST_F(SchedulerTest, DisabledStationsAreSkippedInOrder)
{
    for (const int station : {5, 6, 7, 5, 8})
        addCyclic(station, station);
    driver.EnCommStation(5, 0);
    EXPECT_EQ(serve(1), "06");
    EXPECT_EQ(serve(1), "07");
    EXPECT_EQ(serve(1), "08");
    EXPECT_EQ(serve(1), "06");
    driver.EnCommStation(6, 0);
    driver.EnCommStation(7, 0);
    driver.EnCommStation(8, 0);
    const std::string order = rangesOf(core.readList);
    EXPECT_EQ(next(), "");
    EXPECT_EQ(rangesOf(core.readList), order) << "rotated once round";
    EXPECT_EQ(info.cycleDone, 1);
    EXPECT_EQ(core.activeSource, SOURCE_CYCLIC);
    driver.EnCommStation(5, 1);
    EXPECT_EQ(serve(1), "05");
}

TEST_F(SchedulerTest, WritesToDisabledStationsDoNotHoldTheOthersBack)
{
    addWrites(2, 5);
    addCyclic(1);
    driver.EnCommStation(5, 0);
    EXPECT_EQ(turns(2), "CC");
    EXPECT_EQ(core.writeBurst, 0) << "the cyclic turn resets it";
    addWrites(1, 6);
    EXPECT_EQ(serve(1), "06");
    EXPECT_EQ(core.writeBurst, 1);
    EXPECT_EQ(core.writeList.size(), 2);
    driver.EnCommStation(5, 1);
    EXPECT_EQ(turns(3), "WWC");
}

TEST_F(SchedulerTest, TheStationTable)
{
    addCyclic(0, 0);
    addCyclic(1, 1);
    const auto visible = [this] {
        const std::string first = serve(1);
        return first + " " + serve(1);
    };
    struct Row {
        int station;
        int enable;
        const char *seen;
    };
    const Row rows[] = {
        {1, 1, "00 01"}, // was not disabled
        {1, 2, "00 01"}, // no such flag
        {1, 0, "00 00"}, {1, 0, "00 00"}, {1, 2, "00 00"},
        {1, 1, "01 00"}, {0, 0, "01 01"}, {-1, 0, "00 01"}, // a negative station enables all
    };
    for (const Row &row : rows) {
        driver.EnCommStation(row.station, row.enable);
        EXPECT_EQ(visible(), row.seen) << row.station << " " << row.enable;
    }
}

TEST_F(SchedulerTest, WritesWithoutAFrameVanishInTheirTurn)
{
    for (const int kind : std::vector<int>{KIND_INPUT_WORD, -1, KIND_INPUT_BIT}) {
        const RW_VAR record = write(kind, 16, 1, "34 12");
        driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
    }
    addWrites(1);
    addCyclic(1);
    EXPECT_EQ(next(4), "01 10 00 03");
    EXPECT_EQ(core.writeBurst, 1);
    EXPECT_EQ(core.writeList.size(), 1);
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(stored(KIND_INPUT_WORD, "8", 1), "34 12");
    EXPECT_EQ(stored(KIND_INPUT_BIT, "2.0", 1), "01");
    EXPECT_EQ(answer(GOOD_WRITE), RESULT_GOOD);
    EXPECT_EQ(turns(1), "C");

    // Between a disabled station's writes: their order stays, and the turn goes on to the reads.
    addWrites(1, 5);
    const RW_VAR record = write(KIND_INPUT_WORD, 16, 1, "34 12");
    driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
    addWrites(1, 5);
    driver.EnCommStation(5, 0);
    EXPECT_EQ(turns(1), "C");
    EXPECT_EQ(rangesOf(core.writeList), "7[0,1) 7[4,5)");
}

TEST_F(SchedulerTest, RemoteModeCountsForTheNextRequest)
{
    addCyclic(1);
    EXPECT_EQ(next(2), "01 03");
    info.remoteMode = 1;
    EXPECT_EQ(next(2), "01 03") << "a pending frame stays as it is";
    EXPECT_EQ(answer(GOOD_READ), RESULT_GOOD);
    EXPECT_EQ(next(2), "16 00");
    EXPECT_EQ(answer(GOOD_READ), RESULT_GOOD);
    const RW_VAR record = write(KIND_INPUT_WORD, 0, 1, "34 12");
    driver.AddListWriteVar(&record, QUEUE_UNCONDITIONALLY);
    EXPECT_EQ(next(2), "18 00") << "every kind has a remote frame";
}
