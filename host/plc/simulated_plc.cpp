#include "host/plc/simulated_plc.h"

#include "host/core/line/crc16.h"
#include "host/core/line/replies.h"

#include <fcntl.h>
#include <modbus.h>
#include <poll.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <stdexcept>

namespace velko
{

namespace
{

using Clock = std::chrono::steady_clock;
using TimePoint = Clock::time_point;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

const int INPUT_REGISTERS = 1000;
const int HOLDING_REGISTERS = 6000;
const int BROADCAST = 0;
const int LAST_STATION = 247;
const size_t MAX_REMEMBERED = 100000;

const int SHORTEST_FRAME = 4;
const int OPEN_END = 512; // more than any request has

// Ends a request whose length its function does not tell, and makes a fragment forgotten.
constexpr milliseconds SILENCE(20);
constexpr milliseconds STOP_CHECK(20);

// At high speeds several bytes are sent at once: the system wakes nobody up every few microseconds.
constexpr nanoseconds SHORTEST_STEP = milliseconds(1);

const uint32_t LIBMODBUS_MICROSECONDS = 1000; // all that it waits for is there already

[[noreturn]] void fail(const std::string &what)
{
    throw std::runtime_error("simulated PLC: " + what);
}

[[noreturn]] void failWithReason(const std::string &what)
{
    fail(what + ": " + modbus_strerror(errno));
}

// --- Descriptors ---

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

// What is written to either end is read from the other.
class SocketPair
{
public:
    SocketPair()
    {
        const int type = SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK;
        if (::socketpair(AF_UNIX, type, 0, m_ends.data()) != 0)
            failWithReason("no pair of sockets can be made");
    }
    ~SocketPair()
    {
        ::close(m_ends[0]);
        ::close(m_ends[1]);
    }
    SocketPair(const SocketPair &) = delete;
    SocketPair &operator=(const SocketPair &) = delete;
    int inner() const { return m_ends[0]; }
    int outer() const { return m_ends[1]; }

private:
    std::array<int, 2> m_ends{};
};

int openMaster()
{
    const int fd = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        failWithReason("no pseudo-terminal can be made");
    return fd;
}

std::string unlockedSlave(int master)
{
    std::array<char, 128> name{};
    if (::grantpt(master) != 0 || ::unlockpt(master) != 0
        || ::ptsname_r(master, name.data(), name.size()) != 0)
        failWithReason("its pseudo-terminal cannot be unlocked");
    return name.data();
}

int openSlave(const std::string &device)
{
    const int fd = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        failWithReason("its pseudo-terminal cannot be opened");
    return fd;
}

// Raw before the first byte: until then the terminal would echo and translate what passes.
void makeRaw(int slave)
{
    termios settings{};
    if (::tcgetattr(slave, &settings) != 0)
        failWithReason("its pseudo-terminal cannot be read");
    ::cfmakeraw(&settings);
    if (::tcsetattr(slave, TCSANOW, &settings) != 0)
        failWithReason("its pseudo-terminal cannot be made raw");
}

// --- Frames ---

QByteArray withCrc(const QByteArray &bytes)
{
    return bytes + crc16(bytes);
}

// How many bytes a request will have, as far as its beginning tells.
int lengthOf(const QByteArray &beginning)
{
    if (beginning.size() < 2)
        return 2;
    const int function = byteAt(beginning, 1);
    if (function >= MODBUS_FC_READ_COILS && function <= MODBUS_FC_WRITE_SINGLE_REGISTER)
        return 8;
    if (function == MODBUS_FC_WRITE_MULTIPLE_COILS
        || function == MODBUS_FC_WRITE_MULTIPLE_REGISTERS)
        return beginning.size() < 7 ? 7 : 9 + byteAt(beginning, 6);
    return OPEN_END;
}

// libmodbus takes any other function for a request of four bytes, and so would not answer it.
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

QByteArray exceptionReply(const QByteArray &request, int code)
{
    QByteArray reply = request.left(1);
    reply.append(static_cast<char>(byteAt(request, 1) | 0x80)).append(static_cast<char>(code));
    return withCrc(reply);
}

// As another station would answer the same request.
QByteArray foreignReply(const QByteArray &reply)
{
    QByteArray foreign = reply.left(reply.size() - 2);
    foreign[0] = static_cast<char>(byteAt(reply, 0) % LAST_STATION + 1);
    const int function = byteAt(reply, 1);
    if (function >= MODBUS_FC_READ_COILS && function <= MODBUS_FC_READ_INPUT_REGISTERS)
        std::transform(foreign.begin() + 3, foreign.end(), foreign.begin() + 3,
                       [](char byte) { return static_cast<char>(~byte); });
    return withCrc(foreign);
}

QByteArray withFlippedBit(QByteArray frame, int index)
{
    frame[index] = static_cast<char>(frame.at(index) ^ 0x01);
    return frame;
}

// Noise that does not contain the number of the station whose reply follows.
QByteArray junk(int size, int station)
{
    const QByteArray pattern = QByteArray::fromHex(station == 0xA5 ? "FF005A" : "FF00A5");
    return pattern.repeated(size / pattern.size() + 1).left(size);
}

// --- Time on the line ---

// Start bit, eight data bits, parity or a second stop bit, stop bit.
nanoseconds characterTime(int baudRate)
{
    return baudRate > 0 ? nanoseconds(11000000000LL / baudRate) : nanoseconds(0);
}

nanoseconds frameGap(int baudRate)
{
    return characterTime(baudRate) * 7 / 2;
}

// What is sent without interruption, and the pause before it.
struct Piece {
    nanoseconds pause;
    QByteArray bytes;
};

std::vector<Piece> piecesOf(const QByteArray &reply, const Fault &fault, nanoseconds gap)
{
    const nanoseconds none(0);
    const int middle = reply.size() / 2;
    switch (fault.kind) {
    case Fault::CUT:
        return {{none, reply.left(fault.number)}};
    case Fault::FLIP:
        return {{none, withFlippedBit(reply, reply.size() - 3)}};
    case Fault::JUNK:
        return {{none, junk(fault.number, byteAt(reply, 0)) + reply}};
    case Fault::FOREIGN:
        return {{none, foreignReply(reply)}, {gap, reply}};
    case Fault::STUTTER:
        return {{none, reply.left(middle)}, {milliseconds(fault.number), reply.mid(middle)}};
    default:
        return {{none, reply}};
    }
}

// Bytes on their way. Those of a late reply may get between the bytes of another: on a line, too,
// stations that send at the same time spoil each other's frames.
class Outbox
{
public:
    struct Chunk {
        QByteArray bytes;
        uint64_t entry;   // of the request, in the log
        QByteArray whole; // behind the last bytes of a piece: all of them
    };

    /// Returns when the last byte is due.
    TimePoint add(TimePoint begin, const std::vector<Piece> &pieces, nanoseconds character,
                  uint64_t entry)
    {
        for (const Piece &piece : pieces) {
            begin += piece.pause;
            const int size = piece.bytes.size();
            const int step = character.count() == 0
                                 ? std::max(size, 1)
                                 : static_cast<int>(SHORTEST_STEP / character) + 1;
            for (int sent = 0; sent < size; sent += step) {
                const QByteArray bytes = piece.bytes.mid(sent, step);
                const bool isLast = sent + bytes.size() == size;
                m_chunks.insert({begin + character * (sent + bytes.size()),
                                 {bytes, entry, isLast ? piece.bytes : QByteArray()}});
            }
            begin += character * size;
        }
        return begin;
    }

    bool hasDue(TimePoint now) const { return !m_chunks.empty() && nextDue(now) <= now; }

    TimePoint nextDue(TimePoint otherwise) const
    {
        return m_chunks.empty() ? otherwise : m_chunks.begin()->first;
    }

    Chunk takeFirst()
    {
        Chunk chunk = m_chunks.begin()->second;
        m_chunks.erase(m_chunks.begin());
        return chunk;
    }

private:
    std::multimap<TimePoint, Chunk> m_chunks;
};

// --- Memory ---

// Values that differ from register to register, in their two bytes, and from station to station.
void fillMemory(modbus_mapping_t &memory, int position)
{
    const int shift = 0x0101 * position;
    for (int i = 0; i < memory.nb_input_registers; ++i)
        memory.tab_input_registers[i] = static_cast<uint16_t>(0x1234 + 0x0B07 * i + shift);
    for (int i = 0; i < memory.nb_registers; ++i)
        memory.tab_registers[i] = static_cast<uint16_t>(0x5AA5 + 0x1D03 * i + shift);
}

void moveValues(uint16_t *registers, milliseconds elapsed)
{
    const int64_t time = elapsed.count();
    const int64_t inTriangle = time % 20000;
    const double angle = 2 * M_PI * static_cast<double>(time % 10000) / 10000;
    const float wave = static_cast<float>(100 * std::sin(angle));
    uint32_t bits = 0;
    static_assert(sizeof bits == sizeof wave, "the wave takes two registers");
    std::memcpy(&bits, &wave, sizeof bits);
    registers[0] = static_cast<uint16_t>(time / 100);
    registers[1] = static_cast<uint16_t>(std::min(inTriangle, 20000 - inTriangle) / 10);
    registers[2] = static_cast<uint16_t>(bits);
    registers[3] = static_cast<uint16_t>(bits >> 16);
    registers[4] = static_cast<uint16_t>(time / 1000);
}

} // namespace

struct SimulatedPlc::Request {
    QByteArray frame;
    TimePoint arrival;
};

// --- The pseudo-terminal ---

struct SimulatedPlc::Line {
    Line() : master(openMaster()), device(unlockedSlave(master.get())), slave(openSlave(device))
    {
        makeRaw(slave.get());
    }

    // Until something comes, something is to be sent or decided, or the thread may have to stop.
    bool waitForInput() const
    {
        const TimePoint now = Clock::now();
        TimePoint until = std::min(now + STOP_CHECK, outbox.nextDue(now + STOP_CHECK));
        if (!incoming.frame.isEmpty())
            until = std::min(until, lastByte + SILENCE);
        const nanoseconds wait = std::max<nanoseconds>(until - now, nanoseconds(0));
        const timespec timeout = {0, static_cast<long>(wait.count())}; // less than a second
        pollfd input = {master.get(), POLLIN, 0};
        return ::ppoll(&input, 1, &timeout, nullptr) > 0;
    }

    // Not more than belongs to the request: what follows it is the next one.
    void read()
    {
        std::array<char, OPEN_END> bytes;
        const int missing = lengthOf(incoming.frame) - incoming.frame.size();
        const ssize_t got = ::read(master.get(), bytes.data(), static_cast<size_t>(missing));
        if (got <= 0)
            return;
        lastByte = Clock::now();
        if (incoming.frame.isEmpty())
            incoming.arrival = lastByte;
        incoming.frame.append(bytes.data(), static_cast<int>(got));
    }

    // Empty: it is not whole yet, or was never to be.
    Request takeRequest(bool hadInput)
    {
        const int length = lengthOf(incoming.frame);
        const bool isSilent = !hadInput && Clock::now() >= lastByte + SILENCE;
        const bool isWhole =
            incoming.frame.size() >= (isSilent && length == OPEN_END ? SHORTEST_FRAME : length);
        Request request;
        if (isWhole || isSilent)
            std::swap(request, incoming);
        return isWhole ? request : Request();
    }

    // A master that does not read loses bytes, as on any line; it must not hold up the others.
    void send(const QByteArray &bytes) const
    {
        const ssize_t sent =
            ::write(master.get(), bytes.constData(), static_cast<size_t>(bytes.size()));
        static_cast<void>(sent);
    }

    Descriptor master;
    std::string device;
    Descriptor slave; // kept open: a master that closes its own must not hang up the line
    Request incoming;
    TimePoint lastByte;
    Outbox outbox;
};

// --- A station ---

struct SimulatedPlc::Station {
    Station(int theNumber, int thePosition, const std::string &device)
        : number(theNumber),
          position(thePosition),
          context(modbus_new_rtu(device.c_str(), 19200, 'N', 8, 2), modbus_free),
          memory(modbus_mapping_new(0, 0, HOLDING_REGISTERS, INPUT_REGISTERS), modbus_mapping_free)
    {
        // The response time-out is what libmodbus sleeps before some exception replies.
        if (!context || !memory || modbus_set_slave(context.get(), number) != 0
            || modbus_set_socket(context.get(), sockets.inner()) != 0
            || modbus_set_indication_timeout(context.get(), 0, LIBMODBUS_MICROSECONDS) != 0
            || modbus_set_byte_timeout(context.get(), 0, LIBMODBUS_MICROSECONDS) != 0
            || modbus_set_response_timeout(context.get(), 0, 1) != 0)
            failWithReason("libmodbus refuses its settings");
        fillMemory(*memory, position);
    }

    void move(Clock::duration elapsed) const
    {
        const auto passed = std::chrono::duration_cast<milliseconds>(elapsed);
        moveValues(memory->tab_input_registers, passed + milliseconds(2000) * position);
    }

    Fault nextFault()
    {
        count = count % fault.every + 1;
        return count == fault.every ? fault : Fault();
    }

    // Empty after a broadcast.
    QByteArray replyTo(const QByteArray &request, const Fault &present) const
    {
        if (present.kind == Fault::SILENT)
            return QByteArray();
        QByteArray reply;
        if (present.kind == Fault::EXCEPTION)
            reply = exceptionReply(request, present.number);
        else if (!isServed(byteAt(request, 1)))
            reply = exceptionReply(request, MODBUS_EXCEPTION_ILLEGAL_FUNCTION);
        else
            reply = carryOut(request);
        return byteAt(request, 0) == BROADCAST ? QByteArray() : reply;
    }

    int number;
    int position; // in the list of stations
    SocketPair sockets;
    std::unique_ptr<modbus_t, decltype(&modbus_free)> context;
    std::unique_ptr<modbus_mapping_t, decltype(&modbus_mapping_free)> memory;
    TimePoint busyUntil; // a station sends one reply after the other
    Fault fault;
    int count = 0; // of requests since the fault was set or struck

private:
    QByteArray carryOut(const QByteArray &request) const
    {
        std::array<uint8_t, MODBUS_RTU_MAX_ADU_LENGTH> received{};
        const ssize_t sent = ::send(sockets.outer(), request.constData(),
                                    static_cast<size_t>(request.size()), MSG_NOSIGNAL);
        const int length =
            sent == request.size() ? modbus_receive(context.get(), received.data()) : 0;
        if (length > 0)
            modbus_reply(context.get(), received.data(), length, memory.get());
        allIn(sockets.inner()); // what libmodbus left must not stand before the next request
        return allIn(sockets.outer());
    }

    static QByteArray allIn(int socket)
    {
        std::array<char, OPEN_END> bytes;
        const ssize_t got = ::recv(socket, bytes.data(), bytes.size(), MSG_DONTWAIT);
        return got > 0 ? QByteArray(bytes.data(), static_cast<int>(got)) : QByteArray();
    }
};

// --- The whole ---

SimulatedPlc::SimulatedPlc(const SimulatedLineSettings &settings)
    : m_settings(settings),
      m_line(new Line)
{
    m_device = QString::fromStdString(m_line->device);
    std::set<int> known;
    for (const int number : settings.stations) {
        if (number < 1 || number > LAST_STATION || !known.insert(number).second)
            fail("station " + std::to_string(number) + " is out of range, or given twice");
        const int position = static_cast<int>(m_stations.size());
        m_stations.push_back(std::make_unique<Station>(number, position, m_line->device));
    }
    m_thread = std::thread(&SimulatedPlc::serve, this);
}

SimulatedPlc::~SimulatedPlc()
{
    m_stop = true;
    m_thread.join();
}

void SimulatedPlc::serve()
{
    while (!m_stop) {
        const bool hasInput = m_line->waitForInput();
        if (hasInput)
            m_line->read();
        const Request request = m_line->takeRequest(hasInput);
        if (!request.frame.isEmpty())
            handle(request);
        sendDue();
    }
}

void SimulatedPlc::handle(const Request &request)
{
    const uint64_t entry = note(request);
    m_settings.taps.sent(request.frame);
    if (echo(request.frame) && endsInItsCrc(request.frame)) {
        const int addressed = byteAt(request.frame, 0);
        const std::lock_guard<std::mutex> lock(m_mutex);
        for (const std::unique_ptr<Station> &station : m_stations) {
            if (m_settings.moving)
                station->move(request.arrival - m_start);
            if (addressed == station->number || addressed == BROADCAST)
                answer(*station, request, entry);
        }
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    noteEnd(entry);
}

// False when another station seems to send at the same time: nobody understands the request then.
bool SimulatedPlc::echo(const QByteArray &frame)
{
    if (!m_settings.echo)
        return true;
    const bool collides = m_collide;
    m_line->send(collides ? withFlippedBit(frame, 1) : frame);
    return !collides;
}

void SimulatedPlc::answer(Station &station, const Request &request, uint64_t entry)
{
    const Fault fault = station.nextFault();
    const QByteArray reply = station.replyTo(request.frame, fault);
    if (reply.isEmpty())
        return;
    const nanoseconds character = characterTime(m_settings.baudRate);
    const nanoseconds gap = frameGap(m_settings.baudRate);
    const milliseconds delay(fault.kind == Fault::LATE ? fault.number : 0);
    const TimePoint planned = request.arrival + character * request.frame.size() + gap + delay;
    const TimePoint begin = std::max({planned, Clock::now(), station.busyUntil});
    station.busyUntil = m_line->outbox.add(begin, piecesOf(reply, fault, gap), character, entry);
}

// The lock makes sure that a master that has the whole reply finds its end in the log.
void SimulatedPlc::sendDue()
{
    while (m_line->outbox.hasDue(Clock::now())) {
        const Outbox::Chunk chunk = m_line->outbox.takeFirst();
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_line->send(chunk.bytes);
        noteEnd(chunk.entry);
        m_settings.taps.received(chunk.whole);
    }
}

uint64_t SimulatedPlc::note(const Request &request)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_requests.size() == MAX_REMEMBERED) {
        m_requests.pop_front();
        ++m_forgotten;
    }
    m_requests.push_back({request.arrival, Clock::now(), request.frame});
    return m_forgotten + m_requests.size() - 1;
}

void SimulatedPlc::noteEnd(uint64_t entry)
{
    if (entry >= m_forgotten)
        m_requests[static_cast<size_t>(entry - m_forgotten)].end = Clock::now();
}

SimulatedPlc::Station &SimulatedPlc::stationOf(int number) const
{
    for (const std::unique_ptr<Station> &station : m_stations) {
        if (station->number == number)
            return *station;
    }
    throw std::out_of_range("station " + std::to_string(number) + " is not simulated");
}

void SimulatedPlc::setFault(int station, const Fault &fault)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    Station &target = stationOf(station);
    target.fault = fault;
    target.fault.every = std::max(fault.every, 1);
    target.count = 0;
}

std::vector<uint16_t> SimulatedPlc::inputRegisters(int station) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const modbus_mapping_t &memory = *stationOf(station).memory;
    return {memory.tab_input_registers, memory.tab_input_registers + memory.nb_input_registers};
}

std::vector<uint16_t> SimulatedPlc::holdingRegisters(int station) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const modbus_mapping_t &memory = *stationOf(station).memory;
    return {memory.tab_registers, memory.tab_registers + memory.nb_registers};
}

std::vector<SeenRequest> SimulatedPlc::requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return {m_requests.begin(), m_requests.end()};
}

} // namespace velko
