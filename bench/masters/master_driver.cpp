// A minimal master with the driver: it loads the library as a panel's runtime does, and its loop is
// as short as possible.
//
// It keeps no silent interval between frames, because libmodbus does not: both run on a line
// without transmission time.
#include "bench/masters/plc_values.h"
#include "bench/masters/poll_task.h"
#include "bench/masters/raw_port.h"
#include "host/core/loading/driver_library.h"

#include <cstring>
#include <stdexcept>

using namespace velko;

namespace
{

const int MAX_REGISTERS = 125;

class DriverMaster
{
public:
    DriverMaster(const std::string &library, const PollTask &task)
        : m_driver(library),
          m_port(task.device()),
          m_items(task.items())
    {
        m_info.maxRegs = MAX_REGISTERS;
        m_info.defaultStation = STATION;
        m_driver.SetComInfo(&m_info);
        m_requests = m_driver.ReCreatReadVarList(&m_items);
        std::vector<Place> places;
        for (const VAR_ITEM &item : qAsConst(m_items))
            places.push_back(placeOf(item));
        m_expected = plcValues(places);
        m_values.resize(m_expected.size());
    }

    void run(int cycles)
    {
        for (int cycle = 0; cycle < cycles; ++cycle) {
            for (int i = 0; i < m_requests; ++i)
                exchange();
            takeValues();
            requireSame(m_values, m_expected);
        }
    }

private:
    void exchange()
    {
        const Protocol *const request = m_driver.ComCommunication();
        if (!request)
            throw std::runtime_error("the driver has nothing to send");
        m_port.write(request->frame.constData(), request->frameLen);
        const int count = m_port.read(request->replyLen);
        const QByteArray reply = QByteArray::fromRawData(m_port.bytes(), count);
        const int result = m_driver.DataCom(&reply, count)->retCode;
        if (result != RESULT_GOOD)
            throw std::runtime_error("DataCom returned result " + std::to_string(result));
    }

    // Reads each variable by its address text, as a screen does.
    void takeValues()
    {
        size_t place = 0;
        QByteArray bytes;
        for (const VAR_ITEM &item : qAsConst(m_items)) {
            m_driver.GetRegisterData(0, item.kind, item.addrText, STATION, &bytes, item.length);
            const auto registers = static_cast<size_t>(bytes.size()) / sizeof(uint16_t);
            if (place + registers > m_values.size())
                throw std::runtime_error("the driver returned more registers than requested");
            // Low byte first, as on this machine.
            std::memcpy(&m_values[place], bytes.constData(), registers * sizeof(uint16_t));
            place += registers;
        }
    }

    const DriverLibrary m_driver;
    RawPort m_port;
    const QList<VAR_ITEM> m_items;
    ComInfo m_info;
    int m_requests = 0;
    std::vector<uint16_t> m_expected;
    std::vector<uint16_t> m_values;
};

int run(int argc, char **argv)
{
    CLI::App program("Reads variables with the driver.");
    const PollTask task(program);
    std::string library;
    program.add_option("--library", library, "Driver library file; the path contains a slash")
        ->required();
    CLI11_PARSE(program, argc, argv);
    DriverMaster(library, task).run(task.cycles());
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    return exitStatusOf(run, argc, argv);
}
