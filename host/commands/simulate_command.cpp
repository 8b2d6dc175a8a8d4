#include "host/commands/simulate_command.h"

#include "host/commands/console.h"
#include "host/commands/exit_status.h"
#include "host/commands/numbers.h"
#include "host/core/text/joined.h"
#include "host/plc/simulated_plc.h"

#include <algorithm>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>

namespace velko
{

namespace
{

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

const size_t REMEMBERED_REQUESTS = 100000; // by the simulated line
const milliseconds LONGEST_WAIT(60000);

const char *const FOOTER = R"(
A fault is STATION:FAULT or STATION:FAULT=NUMBER. /N behind it: only each N-th request to the
station meets it. A station has one fault at a time; "none" ends it.
  none        replies as it should
  silent      does not reply, and does not carry out the request
  late=300    begins its reply so many milliseconds late
  cut=3       sends only so many bytes of its reply
  flip        sends one wrong bit, so that the CRC does not fit
  junk=3      sends so many bytes of noise right before its reply
  exception=2 refuses the request with this exception code
  foreign     lets a good frame of another station go before its reply
  stutter=16  pauses so many milliseconds in the middle of its reply
The numbers shown are those that hold when NUMBER is left out.

Example: station 2 stops replying 5 seconds after the start and recovers 5 seconds later, and every
tenth reply of station 1 comes with a wrong CRC:
  panelhost simulate --link /tmp/plc --fault 1:flip/10 --at 5:2:silent --at 10:2:none)";

const char *const WHAT_IS_WHERE = R"(Registers of each station, by their numbers on the line:
  input    0          tenths of a second since the start
  input    1          climbs from 0 to 1000 and falls again within 20 s
  input    2 and 3    sine wave from -100 to 100, period 10 s: 32-bit float, low half in 2
  input    4          seconds since the start
  input    5 to 999   fixed values
  holding  0 to 5999  fixed values until they are written
The clock of each further station is 2 s ahead of the one before it.
)";

// --- Options ---

struct TimedFault {
    milliseconds time;
    std::string text; // as given
    StationFault fault;
};

StationFault faultFor(const std::vector<int> &stations, const std::string &text)
{
    const StationFault fault = parseFault(text);
    if (std::find(stations.begin(), stations.end(), fault.station) == stations.end())
        throw std::invalid_argument("fault \"" + text + "\": station "
                                    + std::to_string(fault.station) + " is not simulated");
    return fault;
}

// "SECONDS:SPEC".
TimedFault timedFaultFor(const std::vector<int> &stations, const std::string &text)
{
    const size_t colon = text.find(':');
    if (colon == std::string::npos)
        throw std::invalid_argument("--at \"" + text
                                    + "\" must be SECONDS:STATION:FAULT, for example 5:2:silent");
    const std::string fault = text.substr(colon + 1);
    return {milliseconds(millisecondsIn(text.substr(0, colon))), fault, faultFor(stations, fault)};
}

std::vector<TimedFault> timedFaultsFor(const std::vector<int> &stations,
                                       const std::vector<std::string> &texts)
{
    std::vector<TimedFault> faults;
    faults.reserve(texts.size());
    for (const std::string &text : texts)
        faults.push_back(timedFaultFor(stations, text));
    std::stable_sort(
        faults.begin(), faults.end(),
        [](const TimedFault &left, const TimedFault &right) { return left.time < right.time; });
    return faults;
}

void requireDifferent(const std::vector<int> &stations)
{
    std::set<int> known;
    for (const int station : stations) {
        if (!known.insert(station).second)
            throw std::invalid_argument("--station " + std::to_string(station)
                                        + " is given more than once");
    }
}

// --- What the command needs of the system ---

// A second name of the device, for as long as the PLCs exist.
class DeviceLink
{
public:
    DeviceLink(const std::string &path, const std::string &device) : m_path(path), m_device(device)
    {
        if (m_path.empty())
            return;
        std::error_code error;
        if (fs::is_symlink(fs::symlink_status(m_path, error)))
            fs::remove(m_path, error);
        fs::create_symlink(m_device, m_path, error);
        if (error)
            throw std::runtime_error("the link \"" + path
                                     + "\" cannot be made: " + error.message());
    }
    ~DeviceLink()
    {
        std::error_code ignored;
        if (!m_path.empty() && fs::read_symlink(m_path, ignored) == m_device)
            fs::remove(m_path, ignored);
    }
    DeviceLink(const DeviceLink &) = delete;
    DeviceLink &operator=(const DeviceLink &) = delete;

    static void requireFree(const fs::path &path)
    {
        std::error_code ignored;
        const fs::file_status status = fs::symlink_status(path, ignored);
        if (fs::exists(status) && !fs::is_symlink(status))
            throw std::invalid_argument("--link: \"" + path.string()
                                        + "\" exists and is no symbolic link");
    }

private:
    fs::path m_path;
    fs::path m_device;
};

// --- While the PLCs run ---

struct Schedule {
    std::deque<TimedFault> faults; // earliest first
    std::optional<milliseconds> end;
};

class Simulation
{
public:
    Simulation(SimulatedPlc &plc, std::vector<int> stations, Schedule schedule)
        : m_plc(plc),
          m_stations(std::move(stations)),
          m_schedule(std::move(schedule))
    {
    }

    /// Until the end of the schedule or a signal.
    void run(Console &console)
    {
        while (!isOver()) {
            applyDueFaults();
            std::fflush(stdout);
            const Console::Input input = console.wait(static_cast<int>(waitTime().count()));
            if (input.isEnd || input.isReload)
                return;
            for (const std::string &line : input.lines)
                obey(line);
        }
    }

private:
    milliseconds elapsed() const
    {
        return std::chrono::duration_cast<milliseconds>(Clock::now() - m_start);
    }

    bool isOver() const { return m_schedule.end && elapsed() >= *m_schedule.end; }

    milliseconds waitTime() const
    {
        milliseconds next = elapsed() + LONGEST_WAIT;
        if (m_schedule.end)
            next = std::min(next, *m_schedule.end);
        if (!m_schedule.faults.empty())
            next = std::min(next, m_schedule.faults.front().time);
        return std::max(next - elapsed(), milliseconds(0));
    }

    void applyDueFaults()
    {
        while (!m_schedule.faults.empty() && m_schedule.faults.front().time <= elapsed()) {
            const TimedFault &due = m_schedule.faults.front();
            m_plc.setFault(due.fault.station, due.fault.fault);
            const int time = static_cast<int>(due.time.count());
            std::printf("After %d.%03d s: %s\n", time / 1000, time % 1000, due.text.c_str());
            m_schedule.faults.pop_front();
        }
    }

    void obey(const std::string &text)
    {
        try {
            const StationFault fault = faultFor(m_stations, text);
            m_plc.setFault(fault.station, fault.fault);
            std::printf("Now: %s\n", text.c_str());
        } catch (const std::invalid_argument &error) {
            std::printf("Refused: %s\n", error.what());
        }
    }

    SimulatedPlc &m_plc;
    std::vector<int> m_stations;
    Schedule m_schedule;
    Clock::time_point m_start = Clock::now();
};

// --- What is printed ---

std::string listOf(const std::vector<int> &numbers)
{
    std::vector<std::string> texts;
    texts.reserve(numbers.size());
    for (const int number : numbers)
        texts.push_back(std::to_string(number));
    return joined(texts);
}

// The device's name comes first and alone, for programs that start this one.
void printStart(const SimulatedPlc &plc, const SimulatedLineSettings &settings,
                const std::string &link)
{
    std::printf("Device: %s\n", qPrintable(plc.device()));
    std::fflush(stdout);
    if (!link.empty())
        std::printf("Link: %s\n", link.c_str());
    std::printf("Stations: %s\n", listOf(settings.stations).c_str());
    if (settings.baudRate > 0)
        std::printf("Line: as fast as %d baud%s\n", settings.baudRate,
                    settings.echo ? ", with an echo" : "");
    else
        std::printf("Line: takes no time%s\n", settings.echo ? ", with an echo" : "");
    std::printf("%s", WHAT_IS_WHERE);
    std::printf("Lines on standard input change faults: \"%d:silent\", \"%d:none\".\n",
                settings.stations.back(), settings.stations.back());
}

std::string nameOf(int station)
{
    return station == 0 ? "all stations (broadcast)" : "station " + std::to_string(station);
}

void printRequests(const SimulatedPlc &plc, const std::vector<int> &stations)
{
    std::map<int, int> counts;
    for (const int station : stations)
        counts[station] = 0;
    const std::vector<SeenRequest> requests = plc.requests();
    for (const SeenRequest &request : requests)
        ++counts[static_cast<unsigned char>(request.frame.at(0))];
    std::printf("Requests%s:\n",
                requests.size() >= REMEMBERED_REQUESTS ? ", the last 100000 alone" : "");
    for (const auto &[station, count] : counts) {
        const bool isSimulated = std::count(stations.begin(), stations.end(), station) > 0;
        std::printf("  to %s%s: %d\n", nameOf(station).c_str(),
                    station == 0 || isSimulated ? "" : ", which is not simulated", count);
    }
}

} // namespace

SimulateCommand::SimulateCommand(CLI::App &program)
    : Command(program, "simulate", "Simulated PLCs on a pseudo-terminal, to try a master on."),
      m_taps(m_options)
{
    const auto add = [this](const char *name, auto &target, const char *help) {
        return m_options.add_option(name, target, help);
    };
    add("--station", m_stations, "number of a simulated PLC; as often as wanted")
        ->allow_extra_args(false)
        ->type_name("NUMBER")
        ->check(numberFrom(1, 247))
        ->capture_default_str();
    add("--baud", m_baudRate,
        "speed of the line: requests and replies take as long as on a real one; 0: no time at all")
        ->type_name("BAUD")
        ->check(numberFrom(0, 4000000))
        ->capture_default_str();
    add("--fault", m_faults, "what a station does wrong from the start, see below; repeatable")
        ->allow_extra_args(false)
        ->type_name("STATION:FAULT");
    add("--at", m_laterFaults, "the same from so many seconds after the start on; repeatable")
        ->allow_extra_args(false)
        ->type_name("SECONDS:STATION:FAULT");
    m_options.add_flag("--echo", m_echo,
                       "the line returns what the master sends, as some RS-485 adapters do");
    add("--link", m_link,
        "make a symbolic link of this name to the device, for as long as the PLCs run")
        ->type_name("PATH");
    add("--seconds", m_seconds,
        "end after this time, fractions allowed; without it, at Ctrl-C or a SIGTERM")
        ->check(secondsFrom(1, 999999999));
    m_options.footer(FOOTER);
}

int SimulateCommand::run()
{
    SimulatedLineSettings settings;
    settings.stations = m_stations;
    settings.baudRate = m_baudRate;
    settings.echo = m_echo;
    settings.moving = true;
    m_taps.begin();
    settings.taps = {"line", m_taps.taps()};
    requireDifferent(m_stations);
    std::vector<StationFault> faults;
    faults.reserve(m_faults.size());
    for (const std::string &text : m_faults)
        faults.push_back(faultFor(m_stations, text));
    const std::vector<TimedFault> later = timedFaultsFor(m_stations, m_laterFaults);
    Schedule schedule = {{later.begin(), later.end()}, std::nullopt};
    if (!m_seconds.empty())
        schedule.end = milliseconds(millisecondsIn(m_seconds));
    DeviceLink::requireFree(m_link);

    Console console; // before the simulated line's thread
    SimulatedPlc plc(settings);
    const DeviceLink link(m_link, plc.device().toStdString());
    for (const StationFault &fault : faults)
        plc.setFault(fault.station, fault.fault);
    printStart(plc, settings, m_link);
    Simulation(plc, m_stations, std::move(schedule)).run(console);
    printRequests(plc, m_stations);
    m_taps.finish();
    return EXIT_GOOD;
}

} // namespace velko
