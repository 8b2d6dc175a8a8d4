// The serial line with the simulated PLC: silent interval, timeouts, guard time, and which bytes
// pass.
#include "host/core/line/crc16.h"
#include "host/core/line/port_error.h"
#include "host/core/line/replies.h"
#include "host/core/line/serial_line.h"
#include "host/core/line/serial_port.h"
#include "host/core/text/hex.h"
#include "host/core/trust/open_requests.h"
#include "host/plc/device_link.h"
#include "host/plc/simulated_plc.h"
#include "tests/script.h"
#include "tests/virtual_plc.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

using namespace velko;

namespace
{

QByteArray frame(const char *hex)
{
    const QByteArray bytes = QByteArray::fromHex(hex);
    return bytes + crc16(bytes);
}

// Input register 12 of station 1 holds 0x9688.
const char *const READ_12 = "01 04 00 0C 00 01";
const char *const RESPONSE_12 = "01 04 02 96 88 D6 F6";

struct LineUnderTest {
    explicit LineUnderTest(const SimulatedLineSettings &plcSettings = {}) : plc(plcSettings)
    {
        settings.devices = {"virtual"};
        settings.baudRate = 115200;
        settings.responseTimeout = 50;
    }

    Exchange exchange(const char *hex, int replyLength)
    {
        return exchange(frame(hex), replyLength);
    }

    Exchange exchange(const QByteArray &request, int replyLength)
    {
        if (!line)
            line =
                std::make_unique<SerialLine>(plc.opener()(settings, {}), settings, taps, open, cut);
        line->awaitFrameGap();
        open.begin(request, replyLength, OpenRequests::REQUEST);
        Exchange exchange = line->exchange(
            request, replyLength,
            {settings.responseTimeout, settings.guardTime.value_or(settings.responseTimeout)});
        open.end();
        open.forget(request.at(0)); // a line alone is not protected against late responses
        return exchange;
    }

    /// Returns the reply and the outcome, such as "01 04 02 (cut)".
    std::string read12()
    {
        static const char *const outcomes[] = {"", " (cut)", " (nothing)", " (collision)",
                                               " (no echo)"};
        const Exchange result = exchange(READ_12, 7);
        return hexText(result.reply) + outcomes[result.outcome];
    }

    ReplacedTime time;
    VirtualPlc plc;
    LineTaps taps;
    OpenRequests open;
    ReadCut cut;
    LineSettings settings;
    std::unique_ptr<SerialLine> line;
};

milliseconds millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
}

} // namespace

TEST(Line, KeepsSilentIntervalBeforeEachRequest)
{
    const struct {
        int baudRate;
        int floor;
        int gap; // microseconds
    } rows[] = {{9600, 0, 4011}, {19200, 0, 2006}, {38400, 0, 1750}, {38400, 20000, 20000}};
    for (const auto &row : rows) {
        SimulatedLineSettings plcSettings;
        plcSettings.baudRate = row.baudRate;
        LineUnderTest test(plcSettings);
        test.settings.baudRate = row.baudRate;
        test.settings.minFrameGap = row.floor;
        for (int i = 0; i < 6; ++i)
            ASSERT_EQ(test.read12(), RESPONSE_12);
        const std::vector<SeenRequest> seen = test.plc.requests();
        ASSERT_EQ(seen.size(), 6U);
        for (size_t i = 1; i < seen.size(); ++i)
            EXPECT_EQ((seen[i].arrival - seen[i - 1].end) / microseconds(1), row.gap)
                << row.baudRate;
    }
}

TEST(Line, ExchangeEndsWithLastByteOfReply)
{
    LineUnderTest test;
    test.settings.responseTimeout = test.settings.interCharacterTimeout = 5000;
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(test.read12(), RESPONSE_12);
    EXPECT_EQ(hexText(test.exchange("01 03 FF 00 00 01", 7).reply), "01 83 02 C0 F1");
    EXPECT_EQ(hexText(test.exchange("01 41 00 00 00 01", 7).reply), "01 C1 01 B0 50");
    EXPECT_LT(millisecondsSince(start), milliseconds(2000));
}

TEST(Line, Timeouts)
{
    const struct {
        const char *fault;
        int interCharacterTimeout;
        const char *response;
    } rows[] = {
        {"1:stutter=32", 100, RESPONSE_12},
        {"1:stutter=60", 5, "01 04 02 (cut)"},
        {"1:cut=6", 50, "01 04 02 96 88 D6 (cut)"},
        {"1:silent", 50, " (nothing)"},
        {"1:late=20", 50, RESPONSE_12},
        {"1:late=400", 50, " (nothing)"},
    };
    for (const auto &row : rows) {
        LineUnderTest test;
        test.settings.interCharacterTimeout = row.interCharacterTimeout;
        test.settings.responseTimeout = 150;
        test.plc.setFault(1, parseFault(row.fault).fault);
        EXPECT_EQ(test.read12(), row.response) << row.fault;
    }
    // A reply may take longer than the response timeout; only its first byte must arrive in time.
    SimulatedLineSettings slow;
    slow.baudRate = 9600;
    LineUnderTest test(slow);
    test.settings.baudRate = 9600;
    EXPECT_EQ(test.exchange("01 03 00 00 00 64", 205).reply.size(), 205);
    // The timeout starts with the last byte of the request, which takes 230 ms to send.
    const std::string write = "01 10 00 00 00 60 C0" + std::string(384, '0');
    EXPECT_EQ(test.exchange(write.c_str(), 8).reply.size(), 8);
}

TEST(Line, BytesOutsideTheReplyAreDropped)
{
    for (const char *fault : {"1:junk=3", "1:junk=40", "1:foreign"}) {
        LineUnderTest test;
        test.settings.responseTimeout = 30; // shorter than the inter-character timeout
        test.plc.setFault(1, parseFault(fault).fault);
        EXPECT_EQ(test.read12(), RESPONSE_12) << fault;
    }
}

TEST(Line, StaleInputIsDiscardedBeforeEachRequest)
{
    LineUnderTest test;
    test.settings.guardTime = 0;
    test.plc.setFault(1, parseFault("1:late=150").fault);
    EXPECT_EQ(test.read12(), " (nothing)");
    Clock::sleepUntil(Clock::now() + milliseconds(150)); // the late reply arrives
    test.plc.setFault(1, parseFault("1:none").fault);
    EXPECT_EQ(hexText(test.exchange("01 04 00 0D 00 01", 7).reply), "01 04 02 A1 8F 81 04");
}

// Delivers bytes at fixed times after each request; the last ones again and again if it is stuck.
class ScriptedPort : public BytePort
{
public:
    struct Piece {
        int pause; // milliseconds
        QByteArray bytes;
    };

    explicit ScriptedPort(const std::vector<Piece> &pieces, bool isStuck = false)
        : m_pieces(pieces),
          m_next(pieces.size()),
          m_isStuck(isStuck)
    {
    }

    const std::string &device() const override { return m_name; }
    void write(const QByteArray &) override
    {
        m_next = 0;
        m_last = Clock::now();
    }
    QByteArray read(int timeout) override
    {
        const Clock::time_point end = Clock::now() + milliseconds(timeout);
        const bool isLast = m_next == m_pieces.size();
        const Clock::time_point due =
            isLast ? end : m_last + milliseconds(m_pieces.at(m_next).pause);
        Clock::sleepUntil(std::min(due, end));
        if (isLast || due > end)
            return QByteArray();
        m_last = due;
        const size_t piece = m_next++;
        if (m_isStuck && m_next == m_pieces.size())
            m_next = piece;
        return m_pieces.at(piece).bytes;
    }

private:
    const std::string m_name = "scripted";
    const std::vector<Piece> m_pieces;
    size_t m_next;
    const bool m_isStuck;
    Clock::time_point m_last;
};

Exchange readOn(std::unique_ptr<ScriptedPort> port, bool echo, const LineTaps &taps = {})
{
    LineSettings settings;
    settings.baudRate = 115200;
    settings.interCharacterTimeout = 20;
    settings.echo = echo;
    OpenRequests open;
    const ReadCut cut;
    SerialLine line(std::move(port), settings, taps, open, cut);
    const QByteArray request = frame(READ_12);
    open.begin(request, 7, OpenRequests::REQUEST);
    return line.exchange(request, 7, {100, 100});
}

// After bytes that look like the beginning of a long response, a stuck transmitter sends for ever.
TEST(Line, EndsExchangeIfLineNeverFallsSilent)
{
    const ReplacedTime time;
    const Clock::time_point start = Clock::now();
    const std::vector<ScriptedPort::Piece> noise = {{5, frame("01 04 FF").left(3)}, {5, "\x55"}};
    EXPECT_EQ(readOn(std::make_unique<ScriptedPort>(noise, true), false).reply.size(), 7);
    EXPECT_LT(millisecondsSince(start), milliseconds(1500));
}

// A copy that arrives together with its response is no answer to the next request.
TEST(Line, BytesBehindTheResponseAreDropped)
{
    struct Tap : LineTap {
        void sent(const std::string &, const QByteArray &, Clock::time_point) override {}
        void received(const std::string &, const QByteArray &, Clock::time_point) override {}
        void judged(const std::string &, const std::string &) override {}
        void dropped(const std::string &, const QByteArray &bytes, Clock::time_point) override
        {
            all += bytes;
        }
        QByteArray all;
    } tap;
    const ReplacedTime time;
    const QByteArray response = QByteArray::fromHex(RESPONSE_12);
    readOn(
        std::make_unique<ScriptedPort>(std::vector<ScriptedPort::Piece>{{3, response + response}}),
        false, {"", {&tap}});
    EXPECT_EQ(tap.all, response);
}

TEST(Line, EchoInPieces)
{
    const ReplacedTime time;
    const QByteArray request = frame(READ_12);
    const QByteArray response = QByteArray::fromHex(RESPONSE_12);
    for (int i = 1; i < request.size(); ++i) {
        const std::vector<ScriptedPort::Piece> pieces = {
            {3, request.left(i)}, {3, request.mid(i) + response.left(2)}, {3, response.mid(2)}};
        EXPECT_EQ(readOn(std::make_unique<ScriptedPort>(pieces), true).reply, response) << i;
    }
}

TEST(Line, ResponseFilter)
{
    // The late response to a write of register 0 arrives before the response for register 1.
    OpenRequests open;
    const QByteArray write = frame("01 10 00 01 00 01 02 00 07");
    open.begin(write, 8, OpenRequests::REQUEST);
    ResponseFilter ofWrite(open, write, 8);
    ofWrite.add(frame("01 10 00 00 00 01"), {});
    EXPECT_FALSE(ofWrite.hasBegun());
    ofWrite.add(frame("01 10 00 01 00 01") + QByteArray("x"), {});
    EXPECT_EQ(ofWrite.response(), frame("01 10 00 01 00 01"));
    EXPECT_EQ(ofWrite.takeRest(), "x");
    for (const QStringList &row : rowsOf("responses.table")) {
        OpenRequests requests;
        const QByteArray read = frame("01 03 00 00 00 01");
        requests.begin(read, 7, OpenRequests::REQUEST);
        ResponseFilter filter(requests, read, 7);
        for (const QString &part : row.at(0).split('/')) {
            filter.gap();
            // Single bytes are the most difficult case.
            for (const char byte : QByteArray::fromHex(part.toLatin1()))
                filter.add(QByteArray(1, byte), {});
        }
        QByteArray dropped;
        for (const ResponseFilter::Dropped &piece : filter.takeDropped())
            dropped += piece.bytes;
        const QStringList seen = {row.at(0), QString::fromStdString(hexText(filter.response())),
                                  QString::fromStdString(hexText(dropped)),
                                  filter.isComplete() ? "complete" : "waits"};
        EXPECT_EQ(seen, row) << qPrintable(seen.join(" | "));
    }
}

TEST(Line, Echo)
{
    SimulatedLineSettings echoing;
    echoing.echo = true;
    LineUnderTest test(echoing);
    test.settings.echo = true;
    EXPECT_EQ(test.read12(), RESPONSE_12);
    test.plc.collide(true);
    EXPECT_EQ(test.read12(), " (collision)");
    test.plc.collide(false);
    EXPECT_EQ(test.read12(), RESPONSE_12);
    test.plc.setFault(1, {Fault::SILENT, 0, 1});
    EXPECT_TRUE(test.exchange(READ_12, 7).isQuiet); // the echo is no sign of life

    LineUnderTest without;
    without.settings.echo = true;
    without.plc.setFault(1, {Fault::SILENT, 0, 1});
    EXPECT_EQ(without.read12(), " (no echo)");
}

TEST(Line, PortsThatCannotBeOpened)
{
    const struct {
        const char *device;
        Rs485 rs485;
        const char *message;
    } rows[] = {
        {"/dev/none", Rs485::OFF,
         "serial port /dev/none cannot be opened: there is no such device"},
        {"/dev/null", Rs485::OFF, "it is not a serial port"},
        {nullptr, Rs485::RTS_ON_SEND, "cannot switch the RS-485 direction ("},
        {nullptr, Rs485::RTS_AFTER_SEND, "leave out rs485"},
    };
    const SimulatedPlc plc((SimulatedLineSettings()));
    for (const auto &row : rows) {
        LineSettings settings;
        settings.devices = {row.device ? row.device : plc.device().toStdString()};
        settings.rs485 = row.rs485;
        try {
            SerialPort::open(settings, {});
            ADD_FAILURE() << row.message;
        } catch (const PortError &error) {
            EXPECT_NE(std::string(error.what()).find(row.message), std::string::npos)
                << error.what();
        }
    }
}

TEST(Line, ALinkToADeviceIsRemovedByItsOwner)
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath("plc").toStdString();
    {
        auto first = std::make_unique<DeviceLink>(path, "/dev/null");
        const DeviceLink second(path, "/dev/zero");
        first.reset();
        EXPECT_EQ(findPort({path}, {}), "/dev/zero");
    }
    EXPECT_EQ(findPort({path}, {}), "");
}

TEST(Line, NamesAndPatternsOfPorts)
{
    const QTemporaryDir folder;
    const std::string path = folder.path().toStdString();
    EXPECT_EQ(findPort({path + "/usb*"}, {}), "");
    QFile::link("/dev/null", folder.filePath("usb[1]"));
    EXPECT_EQ(findPort({path + "/none", path + "/usb*"}, {}), "/dev/null");
    EXPECT_EQ(findPort({path + "/usb[1]"}, {}), "/dev/null"); // a name, not a pattern
    QFile::remove(folder.filePath("usb[1]"));
    QFile::link("/dev/zero", folder.filePath("usb7"));
    EXPECT_EQ(findPort({path + "/usb*"}, {}), "/dev/zero");
}
