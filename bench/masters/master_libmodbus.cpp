// The same reads with libmodbus: one call per variable or, with --grouped, one call per 125
// registers. The groups, and the places of the variables in them, are computed in advance.
//
// libmodbus keeps no silent interval between frames; neither does the master with the driver.
#include "bench/masters/plc_values.h"
#include "bench/masters/poll_task.h"

#include <modbus.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <numeric>
#include <stdexcept>

namespace
{

// One call, and the place in the image for its registers.
struct Group {
    Place place;
    size_t offset;
};

// The registers of one variable in the image.
struct Source {
    size_t offset;
    size_t count;
};

struct Grouping {
    std::vector<Group> groups;
    std::vector<Source> sources; // one per variable, in the same order
    size_t registers = 0;
};

bool isBefore(const Place &one, const Place &other)
{
    return one.isInput != other.isInput ? one.isInput : one.first < other.first;
}

// Extends the group to include the place if possible. Returns false if it is not.
bool takes(Group &group, const Place &place)
{
    const int end = place.first + place.count;
    if (group.place.isInput != place.isInput || end > group.place.first + MODBUS_MAX_READ_REGISTERS)
        return false;
    group.place.count = std::max(group.place.count, end - group.place.first);
    return true;
}

Grouping grouped(const std::vector<Place> &places)
{
    std::vector<size_t> order(places.size());
    std::iota(order.begin(), order.end(), static_cast<size_t>(0));
    std::stable_sort(order.begin(), order.end(), [&places](size_t one, size_t other) {
        return isBefore(places[one], places[other]);
    });
    Grouping grouping;
    grouping.sources.resize(places.size());
    for (const size_t index : order) {
        const Place &place = places[index];
        if (grouping.groups.empty() || !takes(grouping.groups.back(), place))
            grouping.groups.push_back({place, MODBUS_MAX_READ_REGISTERS * grouping.groups.size()});
        const Group &group = grouping.groups.back();
        grouping.sources[index] = {group.offset
                                       + static_cast<size_t>(place.first - group.place.first),
                                   static_cast<size_t>(place.count)};
    }
    grouping.registers = MODBUS_MAX_READ_REGISTERS * grouping.groups.size();
    return grouping;
}

// Makes one group per variable.
Grouping single(const std::vector<Place> &places)
{
    Grouping grouping;
    for (const Place &place : places) {
        const auto count = static_cast<size_t>(place.count);
        grouping.groups.push_back({place, grouping.registers});
        grouping.sources.push_back({grouping.registers, count});
        grouping.registers += count;
    }
    return grouping;
}

class LibmodbusMaster
{
public:
    LibmodbusMaster(const PollTask &task, bool isGrouped)
        : m_context(modbus_new_rtu(task.device().c_str(), 19200, 'N', 8, 1), modbus_free)
    {
        if (!m_context || modbus_set_slave(m_context.get(), STATION) != 0
            || modbus_set_response_timeout(m_context.get(), 1, 0) != 0
            || modbus_connect(m_context.get()) != 0)
            fail("cannot open " + task.device());
        std::vector<Place> places;
        const QList<VAR_ITEM> items = task.items();
        for (const VAR_ITEM &item : items)
            places.push_back(placeOf(item));
        m_expected = plcValues(places);
        m_values.resize(m_expected.size());
        m_grouping = isGrouped ? grouped(places) : single(places);
        m_image.resize(m_grouping.registers);
    }

    void run(int cycles)
    {
        for (int cycle = 0; cycle < cycles; ++cycle) {
            for (const Group &group : m_grouping.groups)
                read(group);
            takeValues();
            requireSame(m_values, m_expected);
        }
    }

private:
    [[noreturn]] static void fail(const std::string &what)
    {
        throw std::runtime_error("libmodbus " + what + ": " + modbus_strerror(errno));
    }

    void read(const Group &group)
    {
        const auto function =
            group.place.isInput ? modbus_read_input_registers : modbus_read_registers;
        if (function(m_context.get(), group.place.first, group.place.count, &m_image[group.offset])
            != group.place.count)
            fail("cannot read register " + std::to_string(group.place.first));
    }

    void takeValues()
    {
        auto place = m_values.begin();
        for (const Source &source : m_grouping.sources)
            place = std::copy_n(m_image.begin() + static_cast<std::ptrdiff_t>(source.offset),
                                source.count, place);
    }

    std::unique_ptr<modbus_t, decltype(&modbus_free)> m_context;
    Grouping m_grouping;
    std::vector<uint16_t> m_image; // filled by the calls
    std::vector<uint16_t> m_expected;
    std::vector<uint16_t> m_values;
};

int run(int argc, char **argv)
{
    CLI::App program("Reads variables with libmodbus.");
    const PollTask task(program);
    bool isGrouped = false;
    program.add_flag("--grouped", isGrouped, "Read up to 125 registers with one call");
    CLI11_PARSE(program, argc, argv);
    LibmodbusMaster(task, isGrouped).run(task.cycles());
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    return exitStatusOf(run, argc, argv);
}
