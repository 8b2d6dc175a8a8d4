#include "tests/slave_side/judge.h"

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <sstream>
#include <utility>

namespace slave_side
{

namespace
{

using velko::Event;

const int WRITE_REGISTERS = 16;
const size_t KEPT_ENTRIES = 2000;
const std::ptrdiff_t SHOWN_ENTRIES = 12;
const std::int64_t SHOWN_DIFFERENCES = 5; // of each kind

// A slave may carry out a request long after the master has given it up.
const std::chrono::seconds LONGEST_DELAY(10);

std::string textOf(const Write &write)
{
    return "write " + std::to_string(write.number) + ", " + write.variable.name + " = " + write.text
           + ": " + (write.results > 0 ? nameOf(write.result.state) : "no result") + " "
           + write.result.detail;
}

bool wasNotSent(const Write &write)
{
    return write.result.state == Event::WRITE_SUPERSEDED
           || write.result.state == Event::WRITE_REFUSED;
}

// Only a request gets an exception response. A write of a part of a register may get it for its read.
bool failedByException(const Write &write)
{
    return write.result.state == Event::WRITE_FAILED
           && write.result.cause == velko::Verdict::EXCEPTION
           && write.cells.front().mask == WHOLE_REGISTER;
}

} // namespace

Judge::Judge(std::string title, int stations) : m_title(std::move(title))
{
    for (int station = 1; station <= stations; ++station)
        for (int address = FIRST_WRITABLE; address < FIRST_READ_ONLY; ++address) {
            const int value = initialValue(station, address);
            m_registers[{station, address}] = {value, ~value, value};
        }
}

void Judge::judgeWrites(const std::vector<Write> &writes, const std::vector<LogEntry> &log)
{
    const size_t older = m_writes.size();
    m_writes.insert(m_writes.end(), writes.begin(), writes.end());
    for (const LogEntry &entry : log) {
        m_log.push_back(entry);
        if (m_log.size() > KEPT_ENTRIES)
            m_log.pop_front();
        if (entry.function == WRITE_REGISTERS)
            replay(entry);
    }
    for (size_t i = older; i < m_writes.size(); ++i)
        judgeResult(m_writes[i]);
    judgeContents();
    while (!m_writes.empty() && m_writes.front().ended < Clock::now() - LONGEST_DELAY)
        m_writes.pop_front();
}

void Judge::replay(const LogEntry &entry)
{
    const Write *unsent = nullptr;
    bool isExplained = false;
    for (Write &write : m_writes) {
        if (!explains(write, entry))
            continue;
        write.isReceived = true;
        for (size_t i = 0; i < entry.values.size(); ++i)
            if (entry.isCarriedOut && entry.time <= write.ended)
                write.written.insert(entry.first + static_cast<int>(i));
        if (wasNotSent(write))
            unsent = &write;
        else
            isExplained = true;
    }
    if (!entry.isCarriedOut)
        return;
    const std::string place =
        "station " + std::to_string(entry.station) + ", register " + std::to_string(entry.first);
    if (!isExplained && unsent != nullptr)
        report(std::string("carried out although ") + nameOf(unsent->result.state), textOf(*unsent),
               entry.time);
    else if (!isExplained)
        report("a write request that no write explains", place, entry.time);
    for (size_t i = 0; i < entry.values.size(); ++i)
        m_registers.at({entry.station, entry.first + static_cast<int>(i)}).content =
            entry.values[i];
}

// True if the request writes the value of the write to its bits, and to all others what they are.
bool Judge::explains(const Write &write, const LogEntry &entry) const
{
    if (write.variable.station != entry.station || write.given > entry.time)
        return false;
    for (size_t i = 0; i < entry.values.size(); ++i) {
        const int address = entry.first + static_cast<int>(i);
        const auto cell =
            std::find_if(write.cells.begin(), write.cells.end(),
                         [address](const Cell &other) { return other.address == address; });
        if (cell == write.cells.end())
            return false;
        const int content = m_registers.at({entry.station, address}).content;
        if (entry.values[i] != ((content & ~cell->mask) | cell->value))
            return false;
    }
    return true;
}

void Judge::judgeResult(const Write &write)
{
    ++m_results[write.results > 0 ? nameOf(write.result.state) : "without a result"];
    if (write.results != 1)
        report("a write with " + std::to_string(write.results) + " results", textOf(write));
    const bool isDone = write.result.state == Event::WRITE_DONE;
    if (isDone && write.written.size() < write.cells.size())
        report("done, but not carried out before", textOf(write), write.ended);
    if (failedByException(write) && !write.isReceived)
        report("failed by an exception, but never sent", textOf(write), write.ended);
    if (wasNotSent(write))
        return;
    for (const Cell &cell : write.cells) {
        Register &place = m_registers.at({write.variable.station, cell.address});
        const int kept = isDone ? ~cell.mask : ~0; // a failed write may have been carried out
        place.mayBe1 = (place.mayBe1 & kept) | cell.value;
        place.mayBe0 = (place.mayBe0 & kept) | (cell.mask & ~cell.value);
    }
}

void Judge::judgeContents()
{
    for (auto &[key, place] : m_registers) {
        const int wrong = (place.content & ~place.mayBe1) | (~place.content & ~place.mayBe0);
        if (wrong == 0)
            continue;
        std::ostringstream text;
        text << "station " << key.first << ", register " << key.second << " = " << place.content
             << ", wrong bits 0x" << std::hex << wrong;
        report("a register differs from the results", text.str());
        place.mayBe1 = place.content;
        place.mayBe0 = ~place.content;
    }
}

void Judge::judgeValues(const velko::Snapshot &snapshot, bool isSettled)
{
    for (const velko::ValueRow &row : snapshot.values) {
        if (row.state.freshness != velko::Freshness::GOOD
            || (row.variable.isWritten() && !isSettled))
            continue;
        for (const Cell &cell : cellsOf(row.variable, row.text)) {
            ++m_values;
            const std::string text =
                row.variable.name + " = " + row.text + ", register " + std::to_string(cell.address);
            if (!isRight(row.variable, cell) && m_wrongValues.insert(text).second)
                report(row.variable.isWritten() ? "a value shown as good that its register lacks"
                                                : "a wrong or older value shown as good",
                       text);
        }
    }
}

// A read-only register has a value of its own, and its tick only grows.
bool Judge::isRight(const velko::Variable &variable, const Cell &cell)
{
    if (variable.isWritten())
        return (m_registers.at({variable.station, cell.address}).content & cell.mask) == cell.value;
    const int function = variable.kind % 3 == 0 ? 4 : 3;
    const std::int64_t now = tickAt(Clock::now());
    const std::int64_t tick = now - ((now - cell.value) & ((1 << TICK_BITS) - 1));
    std::int64_t &latest = m_ticks[{variable.name, cell.address}];
    if (cell.value != readOnlyValue(variable.station, function, cell.address, tick)
        || tick < latest)
        return false;
    latest = tick;
    return true;
}

void Judge::report(const std::string &kind, const std::string &what, Clock::time_point until)
{
    if (++m_differences[kind] > SHOWN_DIFFERENCES)
        return;
    const auto seconds = [this](Clock::time_point time) {
        return std::chrono::duration<double>(time - m_start).count();
    };
    std::ostringstream text;
    text.precision(3);
    text << std::fixed << m_title << ", " << seconds(until) << " s: " << kind << ": " << what
         << "\n";
    const auto end = std::find_if(m_log.begin(), m_log.end(),
                                  [&](const LogEntry &entry) { return entry.time > until; });
    for (auto entry = end - std::min(end - m_log.begin(), SHOWN_ENTRIES); entry != end; ++entry) {
        text << "    " << seconds(entry->time) << " station " << entry->station << " function "
             << entry->function << " register " << entry->first;
        for (const int value : entry->values)
            text << " " << value;
        text << (entry->isCarriedOut ? "" : " (not carried out)") << entry->faults << "\n";
    }
    static std::mutex mutex; // the links print side by side
    const std::lock_guard<std::mutex> lock(mutex);
    std::fputs(text.str().c_str(), stdout);
}

} // namespace slave_side
