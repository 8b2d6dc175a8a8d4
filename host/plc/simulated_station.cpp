#include "host/plc/simulated_station.h"

#include "host/core/line/replies.h"
#include "host/core/sizes/limits.h"
#include "host/plc/fault_effects.h"
#include "host/plc/frames.h"
#include "host/plc/plc_error.h"

#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <optional>
#include <set>

namespace velko
{

namespace
{

const uint32_t LIBMODBUS_MICROSECONDS = 1000; // all bytes that it waits for have arrived already

// libmodbus requires the name of a serial device, but uses the socket and never opens the device.
modbus_t *newContext()
{
    return modbus_new_rtu("unused", 19200, 'N', 8, 2);
}

modbus_mapping_t mappingOf(StationMemory &memory)
{
    modbus_mapping_t mapping{};
    mapping.nb_input_registers = static_cast<int>(memory.inputRegisters().size());
    mapping.tab_input_registers = memory.inputRegisters().data();
    mapping.nb_registers = static_cast<int>(memory.holdingRegisters().size());
    mapping.tab_registers = memory.holdingRegisters().data();
    return mapping;
}

// libmodbus does not respond to other function codes: it expects requests of four bytes for them.
bool isServed(int function)
{
    static const std::set<int> served = {MODBUS_FC_READ_COILS,
                                         MODBUS_FC_READ_DISCRETE_INPUTS,
                                         MODBUS_FC_READ_HOLDING_REGISTERS,
                                         MODBUS_FC_READ_INPUT_REGISTERS,
                                         MODBUS_FC_WRITE_SINGLE_COIL,
                                         MODBUS_FC_WRITE_SINGLE_REGISTER,
                                         MODBUS_FC_WRITE_MULTIPLE_COILS,
                                         MODBUS_FC_WRITE_MULTIPLE_REGISTERS,
                                         MODBUS_FC_REPORT_SLAVE_ID,
                                         MODBUS_FC_MASK_WRITE_REGISTER,
                                         MODBUS_FC_WRITE_AND_READ_REGISTERS};
    return served.count(function) > 0;
}

QByteArray allIn(int socket)
{
    std::array<char, FRAME_BUFFER_BYTES> bytes;
    const ssize_t got = ::recv(socket, bytes.data(), bytes.size(), MSG_DONTWAIT);
    return got > 0 ? QByteArray(bytes.data(), static_cast<int>(got)) : QByteArray();
}

} // namespace

SimulatedStation::SimulatedStation(int number, int position)
    : m_number(number),
      m_context(newContext(), modbus_free),
      m_memory(position),
      m_mapping(mappingOf(m_memory))
{
    // The response timeout is the time that libmodbus sleeps before some exception responses.
    if (!m_context || modbus_set_slave(m_context.get(), number) != 0
        || modbus_set_socket(m_context.get(), m_sockets.inner()) != 0
        || modbus_set_indication_timeout(m_context.get(), 0, LIBMODBUS_MICROSECONDS) != 0
        || modbus_set_byte_timeout(m_context.get(), 0, LIBMODBUS_MICROSECONDS) != 0
        || modbus_set_response_timeout(m_context.get(), 0, 1) != 0)
        failPlcWithErrno("libmodbus does not accept its settings");
}

void SimulatedStation::setFault(const Fault &fault)
{
    m_fault = fault;
    m_fault.every = std::max(fault.every, 1);
    m_count = 0;
}

Fault SimulatedStation::nextFault()
{
    m_count = m_count % m_fault.every + 1;
    return m_count == m_fault.every ? m_fault : Fault();
}

QByteArray SimulatedStation::responseTo(const QByteArray &request, const Fault &fault)
{
    std::optional<QByteArray> response = responseWithoutExecution(request, fault);
    if (!response && !isServed(byteAt(request, 1)))
        response = exceptionResponse(request, MODBUS_EXCEPTION_ILLEGAL_FUNCTION);
    if (!response)
        response = execute(request);
    return byteAt(request, 0) == BROADCAST_STATION ? QByteArray() : *response;
}

QByteArray SimulatedStation::execute(const QByteArray &request)
{
    std::array<uint8_t, MODBUS_RTU_MAX_ADU_LENGTH> received{};
    const ssize_t sent = ::send(m_sockets.outer(), request.constData(),
                                static_cast<size_t>(request.size()), MSG_NOSIGNAL);
    const int length =
        sent == request.size() ? modbus_receive(m_context.get(), received.data()) : 0;
    if (length > 0)
        modbus_reply(m_context.get(), received.data(), length, &m_mapping);
    allIn(m_sockets.inner()); // bytes that libmodbus left must not precede the next request
    return allIn(m_sockets.outer());
}

} // namespace velko
