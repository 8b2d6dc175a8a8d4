// The slaves of one link on a pseudo-terminal, with faults between them and the line. They log what
// they carry out.
#pragma once

#include "host/plc/pseudo_terminal.h"
#include "tests/slave_side/registers.h"

#include <QByteArray>

#include <atomic>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace slave_side
{

/// Per cent of the requests that a fault affects, by the name of the fault.
using Rates = std::map<std::string, double>;

/// Returns a rate for every fault that there is. `mix`: "none", "late" or "all".
Rates ratesOf(const std::string &mix);

/// A request, when it was carried out or discarded.
struct LogEntry {
    Clock::time_point time;
    int station = 0;
    int function = 0;
    int first = 0;
    std::vector<int> values; ///< of a write
    bool isCarriedOut = false;
    std::string faults; ///< that affected it
};

class Slaves
{
public:
    /// Serves the stations from 1 on, on a thread of its own. A late response is late by up to five
    /// times `timeout`. Throws std::runtime_error.
    Slaves(int stations, std::chrono::milliseconds timeout, const Rates &rates, unsigned seed);
    ~Slaves();
    Slaves(const Slaves &) = delete;
    Slaves &operator=(const Slaves &) = delete;

    /// The device that the master opens.
    const std::string &device() const { return m_terminal.device(); }

    /// Returns the entries since the last call. Any thread.
    std::vector<LogEntry> takeLog();

    /// Number of requests received. Any thread.
    std::int64_t requests() const { return m_requests; }

    /// Number of responses that were withheld, because a part of the bytes on the line would have
    /// passed as another response by chance. Any thread.
    std::int64_t chances() const { return m_chances; }

private:
    struct Station {
        int number = 0;
        std::map<int, int> registers = {};
        std::deque<QByteArray> waiting = {}; // requests
        Clock::time_point lastDue = {};      // of its responses
        int lateResponses = 0;               // that follow
        bool isBlocked = false;              // until its last response is sent
        QByteArray lastWrite = {};
    };
    struct Response {
        Station *station;
        QByteArray bytes;
        int frameBytes;    // without the copy
        bool isAsExpected; // neither late nor damaged
        bool unblocks;
    };

    void serve();
    void readRequests();
    void sendDue(Clock::time_point now);
    bool serveWaiting(Clock::time_point now);
    void handle(Station &station, const QByteArray &request, Clock::time_point now);
    QByteArray respond(Station &station, const QByteArray &request, LogEntry &entry);
    QByteArray write(Station &station, const QByteArray &request, LogEntry &entry);
    void answer(Station &station, QByteArray bytes, LogEntry &entry);
    bool passesByChance(const Response &response);
    bool hasFrameAt(const QByteArray &stream, int start, const Response &response) const;
    bool isHit(const std::string &fault, LogEntry &entry);
    int random(int from, int to);
    void flipBits(QByteArray &frame);
    void log(const LogEntry &entry);

    const std::chrono::milliseconds m_timeout;
    const Rates m_rates;
    std::mt19937 m_random;
    velko::PseudoTerminal m_terminal;
    std::vector<Station> m_stations;
    QByteArray m_input;
    std::multimap<Clock::time_point, Response> m_responses; // by the time when they are due
    QByteArray m_sent;                                      // the latest bytes
    std::atomic<std::int64_t> m_requests{0};
    std::atomic<std::int64_t> m_chances{0};
    std::mutex m_mutex; // guards m_log
    std::vector<LogEntry> m_log;
    std::atomic<bool> m_stop{false};
    std::thread m_thread; // the last member: it uses the others
};

} // namespace slave_side
