// Which answer is believed, when a station that does not answer is probed, and which writes wait.
#include "host/core/line/crc16.h"
#include "host/core/stations/probe_schedule.h"
#include "host/core/trust/check_reads.h"
#include "host/core/trust/open_requests.h"
#include "host/core/writes/written_registers.h"
#include "tests/script.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace velko;

namespace
{

QByteArray withCrc(const QByteArray &bytes)
{
    return bytes + crc16(bytes);
}

char byte(int value)
{
    return static_cast<char>(value);
}

/// A frame of the table: a response, or the request for it.
QByteArray frameOf(const QString &text, bool isRequest)
{
    const QByteArray station(1, '\x01');
    if (text.startsWith('w'))
        return withCrc(station + '\x10' + '\0' + byte(text.mid(1).toInt()) + QByteArray(1, '\0')
                       + '\x01' + (isRequest ? QByteArray("\x02\x12\x34") : QByteArray()));
    if (text.startsWith('x'))
        return withCrc(station + byte(0x80 + text.mid(1).toInt()) + '\x02');
    const char function = byte(text.section('/', 0, 0).toInt());
    const int data = text.section('/', 1).toInt() - 5;
    const QByteArray body = isRequest ? QByteArray(4, '\0') : byte(data) + QByteArray(data, 'd');
    return withCrc(station + function + body);
}

int lengthOf(const QString &text)
{
    return frameOf(text, false).size();
}

} // namespace

TEST(OpenRequests, FramesInAnyOrder)
{
    for (const QStringList &row : rowsOf("open_requests.table")) {
        OpenRequests open;
        QString accepted;
        for (const QString &step : row.at(0).split(", ")) {
            const QString what = step.section(' ', -1);
            if (step == "end")
                open.end();
            else if (step.contains(' '))
                open.begin(frameOf(what, true), lengthOf(what),
                           step.startsWith("check") ? OpenRequests::CHECK_READ
                                                    : OpenRequests::REQUEST);
            else
                accepted += open.isResponse(frameOf(what, false), Clock::now()) ? 'y' : 'n';
        }
        const QString trust = open.isUntrusted(1, {3, 7}) ? "untrusted" : "trusted";
        EXPECT_EQ(row, (QStringList{row.at(0), accepted.isEmpty() ? "-" : accepted, trust}));
    }
}

namespace
{

/// A station with these variables, "KIND:ADDRESS:FORMAT:COUNT", and its requests.
struct PolledStation {
    explicit PolledStation(const std::vector<const char *> &places)
    {
        for (const char *place : places)
            link.variables.push_back(parseVariable(place, 1, Access::READ));
        checks.load(link, RequestPlanner(DRIVER_LIBRARY).plan(link));
    }

    /// Sends the next check read, which has this result. Returns its response, "3/7".
    std::string next(CheckReads::Result result, const ResponseShape &waiting = {})
    {
        const CheckReads::Read read = checks.next(1, open, waiting);
        open.begin(read.frame, read.responseLength, OpenRequests::CHECK_READ);
        checks.ended(1, result, result != CheckReads::ANSWERED);
        const ResponseShape shape = read.response();
        return std::to_string(shape.function) + "/" + std::to_string(shape.length);
    }

    Link link;
    OpenRequests open;
    CheckReads checks;
};

} // namespace

TEST(CheckReads, ArePossibleWithTwoShapes)
{
    const struct {
        std::vector<const char *> places;
        bool arePossible;
    } rows[] = {{{"7:1"}, false},
                {{"7:1", "7:1000"}, false},
                {{"7:1", "6:1"}, true},
                {{"7:1", "7:2"}, true},
                {{"10:1"}, true}};
    for (const auto &row : rows)
        EXPECT_EQ(PolledStation(row.places).checks.arePossible(1), row.arePossible)
            << row.places.front();
}

TEST(CheckReads, DifferFromWhatIsAwaited)
{
    PolledStation station({"7:0:u16:3", "6:0"});
    EXPECT_EQ(station.next(CheckReads::UNANSWERED, {3, 11}), "4/7");
    EXPECT_EQ(station.next(CheckReads::UNANSWERED, {3, 11}), "4/7"); // repeated
    EXPECT_EQ(station.next(CheckReads::ANSWERED, {3, 7}), "4/7");
    EXPECT_EQ(station.next(CheckReads::ANSWERED, {3, 7}), "3/9");
    EXPECT_EQ(station.next(CheckReads::ANSWERED, {3, 7}), "3/11");
    EXPECT_EQ(station.next(CheckReads::ANSWERED, {3, 7}),
              "3/7"); // the only one that is not awaited
    // Everything is awaited: its answer leaves the fewest open requests.
    EXPECT_EQ(station.next(CheckReads::ANSWERED), "3/7");
}

TEST(CheckReads, EndAfterManyExceptions)
{
    PolledStation station({"7:0:u16:3", "7:1000:u16:3"});
    std::set<QByteArray> frames;
    for (int i = 0; i < 19; ++i)
        station.next(CheckReads::EXCEPTION);
    station.next(CheckReads::ANSWERED);
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(station.checks.arePossible(1)) << i;
        frames.insert(station.checks.next(1, station.open, {}).frame);
        station.checks.ended(1, CheckReads::EXCEPTION, true);
    }
    EXPECT_FALSE(station.checks.arePossible(1));
    EXPECT_GE(frames.size(), 2U); // other registers were tried
}

namespace
{

/// A line in virtual time whose stations never respond. The others' cycle takes no time.
class ProbedLine
{
public:
    /// `answered` stations responded before, within 3 ms; `silent` ones never did.
    ProbedLine(int answered, int silent, int timeout)
    {
        for (int station = 1; station <= answered + silent; ++station) {
            ProbeSchedule::Times times = {milliseconds(timeout), {}};
            if (station <= answered)
                times.slowest = milliseconds(3);
            m_schedule.set(station, times);
        }
    }

    void restart() { m_schedule.restart(); }

    void runFor(std::chrono::seconds time, bool isAnyOnline)
    {
        for (const Clock::time_point end = m_now + time; m_now < end;) {
            const std::optional<Probe> probe = m_schedule.due(isAnyOnline, m_now);
            if (!probe) {
                m_now += milliseconds(2);
                continue;
            }
            const Clock::time_point begin = m_now;
            m_now += probe->responseTimeout + milliseconds(7); // frame gap and request
            m_schedule.ended(*probe, begin, m_now, isAnyOnline);
            probes.push_back({*probe, begin, m_now});
        }
    }

    /// The largest share of a minute, from the end of a probe.
    double largestShare() const
    {
        double largest = 0;
        for (const Sent &last : probes) {
            Clock::duration spent = {};
            for (const Sent &sent : probes)
                if (sent.end <= last.end && sent.end > last.end - std::chrono::minutes(1))
                    spent += sent.end - sent.begin;
            largest = std::max(largest, spent / std::chrono::duration<double>(60));
        }
        return largest;
    }

    /// The longest time in seconds from one probe of a station to the next one.
    double longestRound(int station) const
    {
        std::optional<Clock::time_point> before;
        std::chrono::duration<double> longest = {};
        for (const Sent &sent : probes) {
            if (sent.probe.station != station)
                continue;
            if (before)
                longest = std::max(longest, std::chrono::duration<double>(sent.end - *before));
            before = sent.end;
        }
        return longest.count();
    }

    struct Sent {
        Probe probe;
        Clock::time_point begin;
        Clock::time_point end;
    };
    std::vector<Sent> probes;

private:
    ProbeSchedule m_schedule;
    Clock::time_point m_now = Clock::now();
};

} // namespace

TEST(ProbeSchedule, TakesFivePercentOfEachMinute)
{
    const struct {
        int answered;
        int silent;
        int timeout;
        double longestRound; // of a station that answered before, in seconds
    } rows[] = {{1, 0, 500, 11}, {10, 0, 500, 15},  {10, 0, 200, 15}, {10, 5, 500, 15},
                {0, 10, 500, 0}, {30, 30, 500, 60}, {3, 3, 2900, 130}};
    for (const auto &row : rows) {
        SCOPED_TRACE(std::to_string(row.answered) + " " + std::to_string(row.silent));
        ProbedLine line(row.answered, row.silent, row.timeout);
        line.runFor(std::chrono::hours(1), true);
        EXPECT_LE(line.largestShare(), 0.05);
        std::map<int, int> full;
        for (const ProbedLine::Sent &sent : line.probes) {
            full[sent.probe.station] += sent.probe.isFull;
            EXPECT_EQ(sent.probe.responseTimeout.count(), sent.probe.isFull ? row.timeout : 50);
        }
        for (int station = 1; station <= row.answered + row.silent; ++station)
            EXPECT_GT(full[station], 0) << station;
        for (int station = 1; station <= row.answered; ++station)
            EXPECT_LE(line.longestRound(station), row.longestRound) << station;
    }
}

TEST(ProbeSchedule, HalfASecondWhileNoStationIsOnline)
{
    ProbedLine line(3, 2, 300);
    line.runFor(std::chrono::seconds(60), false);
    ASSERT_EQ(line.probes.size(), 120U);
    std::map<int, int> probes;
    std::map<int, int> full;
    for (const ProbedLine::Sent &sent : line.probes) {
        ++probes[sent.probe.station];
        full[sent.probe.station] += sent.probe.isFull;
    }
    for (int station = 1; station <= 5; ++station) {
        EXPECT_EQ(probes[station], 24) << station;
        EXPECT_EQ(full[station], station <= 3 ? 2 : 24) << station; // every tenth, or every one
    }
}

TEST(ProbeSchedule, StartsAgainAtOnce)
{
    for (const bool isRestarted : {false, true}) {
        ProbeSchedule schedule;
        schedule.set(1, {milliseconds(500), milliseconds(3)});
        const Clock::time_point begin = Clock::now();
        const Clock::time_point later = begin + milliseconds(400); // the first pause is longer
        schedule.ended(*schedule.due(true, begin), begin, begin + milliseconds(1), true);
        if (isRestarted)
            schedule.restart();
        EXPECT_EQ(schedule.due(true, later).has_value(), isRestarted);
    }
}

// Probes while no station was online took nobody's time.
TEST(ProbeSchedule, GoesOnWhenOneStationOfAllIsBack)
{
    ProbedLine line(10, 0, 500);
    line.runFor(std::chrono::seconds(120), false);
    line.restart();
    const size_t before = line.probes.size();
    line.runFor(std::chrono::seconds(15), true);
    EXPECT_GE(line.probes.size(), before + 10);
}

TEST(ProbeSchedule, WaitsThreeTimesTheSlowestResponse)
{
    for (const auto &[slowest, timeout] : {std::pair{3, 50}, {40, 120}, {400, 500}}) {
        ProbeSchedule schedule;
        schedule.set(1, {milliseconds(500), milliseconds(slowest)});
        EXPECT_EQ(schedule.due(true, Clock::now())->responseTimeout.count(), timeout);
    }
}

TEST(WrittenRegisters, TouchWhatSharesARegister)
{
    const auto variable = [](const char *place, int station = 1) {
        return parseVariable(place, station, Access::WRITE);
    };
    WrittenRegisters written;
    for (const char *place : {"10:50", "7:110", "8:20"}) // registers 100 and 101; 110; 5020
        written.add(variable(place));
    const struct {
        const char *place;
        bool isTouched;
    } rows[] = {{"7:99", false},       {"7:100", true},        {"7:101", true},
                {"7:102", false},      {"1:203.7", true},      {"4:204", false},
                {"7:98:u16:3", true},  {"7:101:u16:20", true}, {"7:102:u16:8", false},
                {"7:109:u16:3", true}, {"7:5020", true},       {"11:10", true}};
    for (const auto &row : rows)
        EXPECT_EQ(written.touch(variable(row.place)), row.isTouched) << row.place;
    EXPECT_FALSE(written.touch(variable("7:100", 2)));
    written.remove(variable("10:50"));
    EXPECT_FALSE(written.touch(variable("7:101")));
    EXPECT_TRUE(written.touch(variable("7:110")));
}
