// The task of a small master: read variables repeatedly and check their values.
#pragma once

#include "velko_modbus_rtu.h"

#include <QList>

#include <CLI/CLI.hpp>

#include <cstdint>
#include <string>
#include <vector>

class PollTask
{
public:
    /// Adds its options to the program, which outlives the task.
    explicit PollTask(CLI::App &program);

    const std::string &device() const { return m_device; }
    int cycles() const { return m_cycles; }

    /// Returns one variable of --registers words, or a set of --variables variables.
    QList<VAR_ITEM> items() const;

private:
    std::string m_device;
    int m_cycles = 1;
    int m_registers = 1;
    int m_variables = 0;
    unsigned m_seed = 1;
};

/// Calls `run` and returns its result as exit status. If it throws, prints the reason to standard
/// error and returns 1.
int exitStatusOf(int (*run)(int argc, char **argv), int argc, char **argv);

/// Throws std::runtime_error if the values read differ from the PLC's.
void requireSame(const std::vector<uint16_t> &values, const std::vector<uint16_t> &expected);
