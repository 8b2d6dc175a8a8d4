// What a small master is told to do: read variables again and again, and check their values.
#pragma once

#include "bench/masters/plc_values.h"

#include <CLI/CLI.hpp>

#include <string>

class PollTask
{
public:
    /// Adds its options; the program outlives the task.
    explicit PollTask(CLI::App &program);

    const std::string &device() const { return m_device; }
    int cycles() const { return m_cycles; }

    /// One variable of so many words, or a set of variables.
    QList<VAR_ITEM> items() const;

private:
    std::string m_device;
    int m_cycles = 1;
    int m_registers = 1;
    int m_variables = 0;
    unsigned m_seed = 1;
};

/// The exit status of the program whose body is `run`: what that returns, or 1 when it throws; the
/// reason is told on standard error.
int exitStatusOf(int (*run)(int argc, char **argv), int argc, char **argv);

/// Throws std::runtime_error when the values that were read are not those of the PLC.
void requireSame(const std::vector<uint16_t> &values, const std::vector<uint16_t> &expected);
