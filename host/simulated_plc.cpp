#include "host/simulated_plc.h"

#include <fcntl.h>
#include <modbus.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>

namespace
{

const int INPUT_REGISTERS = 1000;
const int HOLDING_REGISTERS = 6000;
const uint32_t STOP_CHECK_MICROSECONDS = 50000;

[[noreturn]] void fail(const char *what)
{
    throw std::runtime_error(std::string("simulated PLC: ") + what + ": " + modbus_strerror(errno));
}

class Descriptor
{
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor() { ::close(m_fd); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};

int openMaster()
{
    const int fd = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (fd < 0 || ::grantpt(fd) != 0 || ::unlockpt(fd) != 0)
        fail("no pseudo-terminal can be made");
    return fd;
}

// Raw before the first byte: until then the terminal would echo and translate what passes. It stays
// open so that the master side does not see an end of file when the panel closes its own.
int openRawSlave(int master)
{
    const int fd = ::open(::ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings;
    if (fd < 0 || ::tcgetattr(fd, &settings) != 0)
        fail("its pseudo-terminal cannot be opened");
    ::cfmakeraw(&settings);
    if (::tcsetattr(fd, TCSANOW, &settings) != 0)
        fail("its pseudo-terminal cannot be made raw");
    return fd;
}

// Values that differ from register to register and in their two bytes.
void fillMemory(modbus_mapping_t &memory)
{
    for (int i = 0; i < memory.nb_input_registers; ++i)
        memory.tab_input_registers[i] = static_cast<uint16_t>(0x1234 + 0x0B07 * i);
    for (int i = 0; i < memory.nb_registers; ++i)
        memory.tab_registers[i] = static_cast<uint16_t>(0x5AA5 + 0x1D03 * i);
}

} // namespace

struct SimulatedPlc::Protocol {
    Protocol()
        : master(openMaster()),
          slave(openRawSlave(master.get())),
          context(modbus_new_rtu(::ptsname(master.get()), 19200, 'N', 8, 2), modbus_free),
          memory(modbus_mapping_new(0, 0, HOLDING_REGISTERS, INPUT_REGISTERS), modbus_mapping_free)
    {
    }

    Descriptor master;
    Descriptor slave;
    std::unique_ptr<modbus_t, decltype(&modbus_free)> context;
    std::unique_ptr<modbus_mapping_t, decltype(&modbus_mapping_free)> memory;
};

SimulatedPlc::SimulatedPlc(int station) : m_station(station), m_protocol(new Protocol)
{
    m_device = QString::fromLocal8Bit(::ptsname(m_protocol->master.get()));
    modbus_t *const context = m_protocol->context.get();
    if (!context || !m_protocol->memory || modbus_set_slave(context, station) != 0
        || modbus_set_socket(context, m_protocol->master.get()) != 0
        || modbus_set_indication_timeout(context, 0, STOP_CHECK_MICROSECONDS) != 0)
        fail("libmodbus refuses its settings");
    fillMemory(*m_protocol->memory);
    m_thread = std::thread(&SimulatedPlc::serve, this);
}

SimulatedPlc::~SimulatedPlc()
{
    m_stop = true;
    m_thread.join();
}

void SimulatedPlc::serve()
{
    std::array<uint8_t, MODBUS_RTU_MAX_ADU_LENGTH> request;
    int requests = 0;
    while (!m_stop) {
        const int length = modbus_receive(m_protocol->context.get(), request.data());
        if (length <= 0)
            continue; // nothing came, or it was no request to this station
        const int loseEvery = m_loseEvery;
        if (loseEvery > 0 && ++requests % loseEvery == 0)
            continue;
        const std::lock_guard<std::mutex> lock(m_memoryMutex);
        modbus_reply(m_protocol->context.get(), request.data(), length, m_protocol->memory.get());
    }
}

std::vector<uint16_t> SimulatedPlc::inputRegisters() const
{
    const std::lock_guard<std::mutex> lock(m_memoryMutex);
    const modbus_mapping_t &memory = *m_protocol->memory;
    return {memory.tab_input_registers, memory.tab_input_registers + memory.nb_input_registers};
}

std::vector<uint16_t> SimulatedPlc::holdingRegisters() const
{
    const std::lock_guard<std::mutex> lock(m_memoryMutex);
    const modbus_mapping_t &memory = *m_protocol->memory;
    return {memory.tab_registers, memory.tab_registers + memory.nb_registers};
}
