#include "host/demo.h"

#include "host/communication_loop.h"
#include "host/peer_master.h"
#include "host/request_reports.h"
#include "host/simulated_plc.h"
#include "host/variable.h"

#include <array>
#include <cstdio>
#include <optional>

namespace
{

const int STATION = 1;
const int LINK_ID = 1;
const int TIME_LIMIT = 10000; // milliseconds for each step; the whole takes about one second
const int COLUMN = 12;

// Where a variable lies is written out here and not asked of the driver, so that the comparison
// would show an error of the driver's.
struct DemoVariable {
    Variable variable;
    int function;      // that reads its area: 3 or 4
    int firstRegister; // as numbered on the line
    int shift;         // its lowest bit in that register
    int bits;
    uint32_t newValue; // for the variables that can be written
};

const std::vector<DemoVariable> demoVariables = {
    {{KIND_INPUT_BIT, "4.6", 1}, 4, 2, 6, 1, 0},
    {{KIND_INPUT_BYTE, "21", 1}, 4, 10, 8, 8, 0},
    {{KIND_INPUT_WORD, "12", 1}, 4, 12, 0, 16, 0},
    {{KIND_INPUT_DWORD, "100", 2}, 4, 200, 0, 32, 0},
    {{KIND_HOLDING_BIT, "41.6", 1}, 3, 20, 14, 1, 1},
    {{KIND_HOLDING_BIT, "40.9", 1}, 3, 20, 9, 1, 0},
    {{KIND_HOLDING_BYTE, "44", 1}, 3, 22, 0, 8, 0xC3},
    {{KIND_HOLDING_BYTE, "45", 1}, 3, 22, 8, 8, 0x3D},
    {{KIND_HOLDING_WORD, "30", 1}, 3, 30, 0, 16, 0xBEEF},
    {{KIND_HOLDING_DWORD, "20", 2}, 3, 40, 0, 32, 0x12345678},
    {{KIND_HOLDING_5000_BIT, "6.0", 1}, 3, 5003, 0, 1, 1},
    {{KIND_HOLDING_5000_BYTE, "11", 1}, 3, 5005, 8, 8, 0x77},
    {{KIND_HOLDING_5000_WORD, "250", 1}, 3, 5250, 0, 16, 0x0102},
    {{KIND_HOLDING_5000_DWORD, "150", 2}, 3, 5300, 0, 32, 0xCAFEF00D},
};

uint32_t maskOf(const DemoVariable &item)
{
    return item.bits == 32 ? 0xFFFFFFFFU : (1U << item.bits) - 1U;
}

// A number in two registers, the lower one holding its low half.
uint32_t pairAt(const std::vector<uint16_t> &registers, int first)
{
    const size_t index = static_cast<size_t>(first);
    return registers.at(index) | static_cast<uint32_t>(registers.at(index + 1)) << 16;
}

uint32_t valueIn(const std::vector<uint16_t> &registers, int first, const DemoVariable &item)
{
    return pairAt(registers, first) >> item.shift & maskOf(item);
}

void putValue(std::vector<uint16_t> &registers, const DemoVariable &item)
{
    uint32_t pair = pairAt(registers, item.firstRegister) & ~(maskOf(item) << item.shift);
    pair |= item.newValue << item.shift;
    const size_t index = static_cast<size_t>(item.firstRegister);
    registers[index] = static_cast<uint16_t>(pair);
    registers[index + 1] = static_cast<uint16_t>(pair >> 16);
}

QByteArray bytesOf(uint32_t number, int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes.append(static_cast<char>(number >> (8 * i) & 0xFF));
    return bytes;
}

int valueBytes(const DemoVariable &item)
{
    return (item.bits + 7) / 8;
}

std::string hexNumber(const DemoVariable &item, std::optional<uint32_t> value)
{
    if (!value)
        return "-";
    std::array<char, 16> text;
    std::snprintf(text.data(), text.size(), "%0*X", (item.bits + 3) / 4, *value);
    return text.data();
}

class Demo
{
public:
    explicit Demo(const DemoSettings &settings)
        : m_settings(settings),
          m_plc(STATION),
          m_driver(settings.library)
    {
        if (!settings.peer.isEmpty())
            requirePeer(settings.peer);
        m_link.maxRegs = settings.maxRegs;
        m_link.defaultStation = STATION;
        m_link.retryLimit = 2;
        m_link.commMode = COMM_DEVICE;
        m_link.linkId = LINK_ID;
        m_driver.SetComInfo(&m_link);
        collectReports(m_driver);
        std::printf("Simulated PLC: station %d on %s (libmodbus)\nDriver:        %s\n", STATION,
                    qPrintable(m_plc.device()), settings.library.c_str());
    }

    bool run()
    {
        const bool exchanged = exchangeValues();
        if (exchanged && !m_settings.peer.isEmpty())
            compareWithPeer();
        if (m_errors > 0)
            std::printf("\n%d errors.\n", m_errors);
        else
            std::printf("\nEvery value agrees.\n");
        return m_errors == 0;
    }

private:
    // The port is open within this function alone: the peer opens the same device afterwards.
    bool exchangeValues()
    {
        LineSettings lineSettings;
        lineSettings.device = m_plc.device();
        SerialLine line(lineSettings);
        CommunicationLoop loop(m_driver, m_link, line);
        const bool complete = poll(loop, "Polling") && write(loop) && readOnce(loop)
                              && poll(loop, "Polling again, values as written");
        const LineCounters &counters = loop.counters();
        std::printf("\n%s\n", textOf(counters).c_str());
        expect(counters.repeated == 0 && counters.givenUp == 0, "the line lost frames");
        return complete;
    }

    bool poll(CommunicationLoop &loop, const char *title)
    {
        std::vector<Variable> variables;
        variables.reserve(demoVariables.size());
        for (const DemoVariable &item : demoVariables)
            variables.push_back(item.variable);
        const bool complete = loop.readAll(variables, TIME_LIMIT);
        expect(complete, "the cyclic list was not read within the time limit");
        std::printf("\n%s\n", title);
        printRow("variable", "address", "panel", "PLC");
        for (const DemoVariable &item : demoVariables)
            compare(item, panelValue(item), "");
        return complete;
    }

    bool write(CommunicationLoop &loop)
    {
        std::vector<uint16_t> expected = m_plc.holdingRegisters();
        size_t queued = 0;
        for (const DemoVariable &item : demoVariables) {
            if (!isWritable(item.variable.kind))
                continue;
            putValue(expected, item);
            queueWrite(item, static_cast<int>(queued++));
        }
        const bool reported = turnUntilReported(loop, queued);
        std::printf("\nWriting %zu variables: %zu reports, %d given up\n", queued,
                    requestReports().size(), giveUps());
        for (const RequestReport &report : requestReports())
            expect(report.status == REQUEST_DONE && report.linkId == LINK_ID, "a write failed");
        // The whole memory, so that a bit written beside the right one shows.
        expect(m_plc.holdingRegisters() == expected, "the PLC does not hold what was written");
        return reported;
    }

    void queueWrite(const DemoVariable &item, int tag)
    {
        const Variable &variable = item.variable;
        const QByteArray value = bytesOf(item.newValue, valueBytes(item));
        const int queued = m_driver.SetRegisterData(QString(), variable.kind,
                                                    QString::fromStdString(variable.address),
                                                    STATION, &value, variable.length, 0, tag);
        expect(queued > 0, "a write was refused");
    }

    // One null of ComCommunication would not do: the turn that ends a burst of writes returns one.
    bool turnUntilReported(CommunicationLoop &loop, size_t reports)
    {
        QElapsedTimer timer;
        timer.start();
        while (requestReports().size() < reports && !timer.hasExpired(TIME_LIMIT))
            loop.turn();
        const bool all = requestReports().size() == reports;
        expect(all, "not every request was reported within the time limit");
        return all;
    }

    bool readOnce(CommunicationLoop &loop)
    {
        const DemoVariable item = {{KIND_HOLDING_WORD, "900", 1}, 3, 900, 0, 16, 0};
        RW_VAR request;
        request.varKind = item.variable.kind;
        request.addrText = QString::fromStdString(item.variable.address);
        request.count = item.variable.length;
        m_driver.AddListOnceReadVar(&request, QUEUE_CHECKED);
        const bool reported = turnUntilReported(loop, requestReports().size() + 1);
        std::printf("\nReading one variable once\n");
        compare(item, panelValue(item), "");
        return reported;
    }

    void compareWithPeer()
    {
        std::printf("\nThe same registers, read by %s\n", qPrintable(m_settings.peer));
        printRow("variable", "address", "read", "PLC");
        for (const DemoVariable &item : demoVariables)
            compare(item, peerValue(item), qPrintable(m_settings.peer));
    }

    std::optional<uint32_t> panelValue(const DemoVariable &item) const
    {
        QByteArray bytes;
        const int known = m_driver.GetRegisterData(0, item.variable.kind,
                                                   QString::fromStdString(item.variable.address),
                                                   STATION, &bytes, item.variable.length);
        if (known == 0 || bytes.size() < valueBytes(item))
            return std::nullopt;
        return numberIn(bytes, valueBytes(item));
    }

    uint32_t peerValue(const DemoVariable &item) const
    {
        const std::vector<uint16_t> pair = readWithPeer(m_settings.peer, m_plc.device(), STATION,
                                                        item.function, item.firstRegister, 2);
        return valueIn(pair, 0, item);
    }

    uint32_t plcValue(const DemoVariable &item) const
    {
        return valueIn(item.function == 4 ? m_plc.inputRegisters() : m_plc.holdingRegisters(),
                       item.firstRegister, item);
    }

    void compare(const DemoVariable &item, std::optional<uint32_t> seen, const std::string &by)
    {
        const uint32_t held = plcValue(item);
        printRow(kindName(item.variable.kind), item.variable.address, hexNumber(item, seen),
                 hexNumber(item, held));
        expect(seen == held, "this value differs " + by);
    }

    static void printRow(const std::string &name, const std::string &address,
                         const std::string &seen, const std::string &held)
    {
        std::printf("  %-26s%-*s%-*s%s\n", name.c_str(), COLUMN, address.c_str(), COLUMN,
                    seen.c_str(), held.c_str());
    }

    void expect(bool holds, const std::string &complaint)
    {
        if (holds)
            return;
        ++m_errors;
        std::printf("  ERROR: %s\n", complaint.c_str());
    }

    DemoSettings m_settings;
    SimulatedPlc m_plc;
    DriverLibrary m_driver;
    ComInfo m_link;
    int m_errors = 0;
};

} // namespace

bool runDemo(const DemoSettings &settings)
{
    return Demo(settings).run();
}
