#include "tests/slave_side/slaves.h"

#include "host/plc/frames.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace slave_side
{

namespace
{

using std::chrono::milliseconds;
using velko::exceptionResponse;
using velko::withCrc;

const int READ_HOLDING = 3;
const int READ_INPUT = 4;
const int WRITE_REGISTERS = 16;

const int ILLEGAL_ADDRESS = 2;
const int ILLEGAL_VALUE = 3;
const int BUSY = 6;

const milliseconds STOP_CHECK(20);
const int MOST_TIMEOUTS = 5;
const int MOST_LATE_RESPONSES = 6; // in a row
const int MOST_FLIPPED_BITS = 3;   // the CRC always detects as many
const int REMEMBERED_BYTES = 64;

int byteAt(const QByteArray &bytes, int index)
{
    return static_cast<unsigned char>(bytes.at(index));
}

int wordAt(const QByteArray &bytes, int index)
{
    return byteAt(bytes, index) << 8 | byteAt(bytes, index + 1);
}

bool hasItsCrc(const QByteArray &frame)
{
    return withCrc(frame.left(frame.size() - 2)) == frame;
}

LogEntry entryOf(const QByteArray &request, Clock::time_point now)
{
    LogEntry entry;
    entry.time = now;
    entry.station = byteAt(request, 0);
    entry.function = byteAt(request, 1);
    entry.first = wordAt(request, 2);
    for (int i = 7; entry.function == WRITE_REGISTERS && i + 3 < request.size(); i += 2)
        entry.values.push_back(wordAt(request, i));
    return entry;
}

} // namespace

// The last two are faults of the slaves, which the judge has to find.
Rates ratesOf(const std::string &mix)
{
    const double late = mix == "none" ? 0 : 1;
    const double all = mix == "all" ? 1 : 0;
    return {{"response-late", 3 * late},
            {"response-doubled", 3 * late},
            {"response-lost", 2 * late},
            {"request-lost", 2 * late},
            {"busy", 3 * late},
            {"response-cut", 2 * all},
            {"response-flipped", 2 * all},
            {"request-flipped", all},
            {"write-ignored", 0},
            {"write-repeated", 0}};
}

Slaves::Slaves(int stations, milliseconds timeout, const Rates &rates, unsigned seed)
    : m_timeout(timeout),
      m_rates(rates),
      m_random(seed),
      m_stations(static_cast<size_t>(stations))
{
    int number = 0;
    for (Station &station : m_stations) {
        station.number = ++number;
        for (int address = FIRST_WRITABLE; address < FIRST_READ_ONLY; ++address)
            station.registers[address] = initialValue(number, address);
    }
    m_thread = std::thread(&Slaves::serve, this);
}

Slaves::~Slaves()
{
    m_stop = true;
    m_thread.join();
}

std::vector<LogEntry> Slaves::takeLog()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<LogEntry> taken;
    taken.swap(m_log);
    return taken;
}

void Slaves::log(const LogEntry &entry)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_log.push_back(entry);
}

void Slaves::serve()
{
    while (!m_stop) {
        auto wait = STOP_CHECK;
        if (!m_responses.empty())
            wait = std::min(
                wait, std::chrono::ceil<milliseconds>(m_responses.begin()->first - Clock::now()));
        pollfd input = {m_terminal.master(), POLLIN, 0};
        ::poll(&input, 1, std::max(static_cast<int>(wait.count()), 0));
        readRequests();
        const Clock::time_point now = Clock::now();
        do
            sendDue(now);
        while (serveWaiting(now));
    }
}

void Slaves::readRequests()
{
    std::array<char, 1024> bytes;
    const ssize_t got = ::read(m_terminal.master(), bytes.data(), bytes.size());
    if (got > 0)
        m_input.append(bytes.data(), static_cast<int>(got));
    while (m_input.size() >= velko::requestLength(m_input)) {
        const QByteArray request = m_input.left(velko::requestLength(m_input));
        m_input.remove(0, request.size());
        ++m_requests;
        for (Station &station : m_stations)
            if (station.number == byteAt(request, 0))
                station.waiting.push_back(request);
    }
}

// A response and its copy are one write, so that no pause can come between them.
void Slaves::sendDue(Clock::time_point now)
{
    while (!m_responses.empty() && m_responses.begin()->first <= now) {
        const Response response = m_responses.begin()->second;
        m_responses.erase(m_responses.begin());
        if (response.unblocks)
            response.station->isBlocked = false;
        if (passesByChance(response))
            continue;
        const ssize_t sent = ::write(m_terminal.master(), response.bytes.constData(),
                                     static_cast<size_t>(response.bytes.size()));
        static_cast<void>(sent); // if the master does not read, bytes are lost
    }
}

// Serves at most one request of each station, so that its response can be sent before the next one.
bool Slaves::serveWaiting(Clock::time_point now)
{
    bool hasServed = false;
    for (Station &station : m_stations) {
        if (station.isBlocked || station.waiting.empty())
            continue;
        handle(station, station.waiting.front(), now);
        station.waiting.pop_front();
        hasServed = true;
    }
    return hasServed;
}

void Slaves::handle(Station &station, const QByteArray &request, Clock::time_point now)
{
    LogEntry entry = entryOf(request, now);
    QByteArray received = request;
    if (isHit("request-flipped", entry))
        flipBits(received);
    if (hasItsCrc(received) && !isHit("request-lost", entry)) {
        const bool isBusy = isHit("busy", entry);
        answer(station,
               isBusy ? exceptionResponse(request, BUSY) : respond(station, request, entry), entry);
    }
    log(entry);
    if (!entry.isCarriedOut || entry.function != WRITE_REGISTERS)
        return;
    if (isHit("write-repeated", entry) && !station.lastWrite.isEmpty()) {
        LogEntry repeated = entryOf(station.lastWrite, now);
        repeated.faults = " repeated";
        write(station, station.lastWrite, repeated);
        log(repeated);
    }
    station.lastWrite = request;
}

QByteArray Slaves::respond(Station &station, const QByteArray &request, LogEntry &entry)
{
    const int end = entry.first + wordAt(request, 4);
    if (entry.function == WRITE_REGISTERS)
        return write(station, request, entry);
    if (entry.first < (entry.function == READ_HOLDING ? FIRST_WRITABLE : FIRST_READ_ONLY)
        || end > END_OF_REGISTERS)
        return exceptionResponse(request, ILLEGAL_ADDRESS);
    QByteArray response = request.left(2).append(static_cast<char>(2 * (end - entry.first)));
    for (int address = entry.first; address < end; ++address) {
        const int value = address >= FIRST_READ_ONLY ? readOnlyValue(station.number, entry.function,
                                                                     address, tickAt(entry.time))
                                                     : station.registers.at(address);
        response.append(static_cast<char>(value >> 8)).append(static_cast<char>(value));
    }
    entry.isCarriedOut = true;
    return withCrc(response);
}

QByteArray Slaves::write(Station &station, const QByteArray &request, LogEntry &entry)
{
    const int end = entry.first + static_cast<int>(entry.values.size());
    if (entry.first < FIRST_WRITABLE || end > FIRST_READ_ONLY)
        return exceptionResponse(request, ILLEGAL_ADDRESS);
    const auto valueAt = [&](int address) {
        return entry.values.at(static_cast<size_t>(address - entry.first));
    };
    for (int address = entry.first; address < end; ++address)
        if (isLimited(address) && valueAt(address) > HIGHEST_LIMITED)
            return exceptionResponse(request, ILLEGAL_VALUE);
    entry.isCarriedOut = !isHit("write-ignored", entry);
    for (int address = entry.first; address < end && entry.isCarriedOut; ++address)
        station.registers[address] = valueAt(address);
    return withCrc(request.left(6));
}

// The responses of a station stay in order. While it is blocked, its next requests wait, as with a
// slow slave. Otherwise they are carried out at once, as behind a slow gateway.
void Slaves::answer(Station &station, QByteArray bytes, LogEntry &entry)
{
    if (isHit("response-late", entry))
        station.lateResponses = random(1, MOST_LATE_RESPONSES);
    const bool isLate = station.lateResponses > 0;
    station.lateResponses -= isLate ? 1 : 0;
    if (isHit("response-lost", entry))
        return;
    const int frameBytes = bytes.size();
    const bool isFlipped = isHit("response-flipped", entry);
    const bool isCut = isHit("response-cut", entry);
    const bool isDoubled = !isFlipped && !isCut && isHit("response-doubled", entry);
    if (isFlipped)
        flipBits(bytes);
    if (isCut)
        bytes.truncate(random(1, frameBytes - 1));
    if (isDoubled)
        bytes.append(bytes);
    const int delay = isLate ? random(1, MOST_TIMEOUTS * static_cast<int>(m_timeout.count())) : 0;
    station.isBlocked = isDoubled || (isLate && random(0, 1) == 0);
    station.lastDue = std::max(station.lastDue, entry.time + milliseconds(delay));
    const bool isAsExpected = !isFlipped && !isCut && station.lastDue == entry.time;
    m_responses.insert(
        {station.lastDue, {&station, bytes, frameBytes, isAsExpected, station.isBlocked}});
}

// Damaged bytes, late ones, or bytes of two responses together, contain a frame with a correct CRC
// once in 65,536 times. No master can tell it from the response that it awaits.
bool Slaves::passesByChance(const Response &response)
{
    const QByteArray stream = m_sent + response.bytes;
    const int end = response.isAsExpected ? m_sent.size() : stream.size();
    for (int start = 0; start < end; ++start) {
        if (!hasFrameAt(stream, start, response))
            continue;
        ++m_chances;
        m_sent.clear();
        return true;
    }
    m_sent = stream.right(REMEMBERED_BYTES);
    return false;
}

// True for a frame that ends in the present response and is not that response.
bool Slaves::hasFrameAt(const QByteArray &stream, int start, const Response &response) const
{
    const int function = start + 1 < stream.size() ? byteAt(stream, start + 1) & 0x7F : 0;
    const bool isRead = function == READ_HOLDING || function == READ_INPUT;
    if (byteAt(stream, start) > m_stations.back().number
        || (!isRead && function != WRITE_REGISTERS))
        return false;
    const int place = start - m_sent.size(); // negative: before the present response
    const bool isWhole = place == 0 || place == response.frameBytes;
    // Exceptions have 5 bytes, responses to writes 8, responses to reads an odd number.
    for (int length = 5; start + length <= stream.size(); length += isRead ? 2 : 3) {
        const bool isNew = place + length > 0 && !(isWhole && length == response.frameBytes);
        if (isNew && hasItsCrc(stream.mid(start, length)))
            return true;
    }
    return false;
}

bool Slaves::isHit(const std::string &fault, LogEntry &entry)
{
    const bool isHit = std::uniform_real_distribution<>(0, 100)(m_random) < m_rates.at(fault);
    if (isHit)
        entry.faults += " " + fault;
    return isHit;
}

int Slaves::random(int from, int to)
{
    return std::uniform_int_distribution<>(from, to)(m_random);
}

// Consecutive places, from a random one on: no bit is flipped back.
void Slaves::flipBits(QByteArray &frame)
{
    const int first = random(0, 8 * frame.size() - MOST_FLIPPED_BITS);
    const int step = random(1, 1 + (8 * frame.size() - 1 - first) / MOST_FLIPPED_BITS);
    for (int bits = random(1, MOST_FLIPPED_BITS), place = first;
         bits > 0 && place < 8 * frame.size(); --bits, place += step)
        frame[place / 8] = static_cast<char>(byteAt(frame, place / 8) ^ 1 << place % 8);
}

} // namespace slave_side
