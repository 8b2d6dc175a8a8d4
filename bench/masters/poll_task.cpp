#include "bench/masters/poll_task.h"

#include "bench/tag_sets.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

PollTask::PollTask(CLI::App &program)
{
    program.add_option("device", m_device, "Serial device of the slave")->required();
    program.add_option("--cycles", m_cycles, "Number of reads of each variable")
        ->check(CLI::Range(1, 10000000));
    program
        .add_option("--registers", m_registers,
                    "Read one variable of this many words, from register 0")
        ->check(CLI::Range(1, 125));
    program
        .add_option("--variables", m_variables, "Read a dense set of this many variables instead")
        ->check(CLI::Range(1, 100000));
    program.add_option("--seed", m_seed, "Seed of the set");
}

QList<VAR_ITEM> PollTask::items() const
{
    if (m_variables > 0)
        return makeTagSet(TagSet::DENSE, m_variables, m_seed);
    VAR_ITEM item;
    item.kind = KIND_HOLDING_WORD;
    item.addrText = QStringLiteral("0");
    item.length = m_registers;
    return {item};
}

int exitStatusOf(int (*run)(int argc, char **argv), int argc, char **argv)
{
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
        return 1;
    }
}

void requireSame(const std::vector<uint16_t> &values, const std::vector<uint16_t> &expected)
{
    if (values == expected)
        return;
    const auto difference =
        std::mismatch(values.begin(), values.end(), expected.begin(), expected.end());
    throw std::runtime_error("value " + std::to_string(difference.first - values.begin() + 1)
                             + " of " + std::to_string(expected.size())
                             + " differs from the PLC's");
}
