#!/usr/bin/python3
"""Compares the driver with libmodbus, each in its own small master (masters/), on the same simulated PLC. The
line has no transmission time.

Prints one JSON object per line: exchanges per second; system calls per exchange; processor time and
instructions per variable. The figures do not include start-up: the rate is computed from the times that the
PLC recorded, the other figures are differences between a longer run and a shorter one.
"""
import functools
import pathlib
import resource
import sys
import tempfile

sys.dont_write_bytecode = True  # keep __pycache__ out of the source tree
import measurement
from counting import counted
from simulated_line import SimulatedLine, run

VARIABLES = 1000
SEED = 1  # a set that fits into the registers of the simulated PLC

ONE_EACH = "libmodbus, one call each"
GROUPED = "libmodbus, grouped by hand"

POLL_FILE = """[[link]]
name = "line"
device = "{device}"
timeout = 1000
maxRegs = 125
[[link.variable]]
name = "block"
kind = "holding word"
address = 0
count = 32
"""


def driver(options, device, *arguments):
    return [options.master_driver, device, "--library", options.driver, *map(str, arguments)]


def libmodbus(options, device, *arguments):
    return [options.master_libmodbus, device, *map(str, arguments)]


def grouped(options, device, *arguments):
    return libmodbus(options, device, "--grouped", *arguments)


def dense_set(cycles):
    return ["--variables", VARIABLES, "--seed", SEED, "--cycles", cycles]


# --- Exchanges per second ---

def rate(options, master, registers, cycles):
    with SimulatedLine(options.panelhost) as line:
        run(master(options, line.device, "--registers", registers, "--cycles", cycles))
    if len(line.capture.arrivals()) != cycles:
        raise RuntimeError(f"the PLC received {len(line.capture.arrivals())} of {cycles} requests")
    return 1 / line.capture.period(registers)


def report_rates(options):
    # The rate varies with the processors on which the system runs master and PLC: take more and shorter samples
    # than for the other figures.
    samples, cycles = (1, 1000) if options.brief else (3 * options.samples, 4000)
    for registers, noun in ((1, "register"), (32, "registers"), (125, "registers")):
        ours, peer = measurement.in_turn(
            samples,
            *(functools.partial(rate, options, master, registers, cycles) for master in (driver, libmodbus)))
        measurement.report(f"line-rate-{registers}", f"exchanges per second, {registers} {noun}", "1/s",
                           ours, peer, "libmodbus")


# --- Processor time ---

def processor_seconds(command):
    """Returns user and system time. The PLC is also a child, but counts only after it has ended."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    run(command)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def microseconds_per_variable(options, master, cycles):
    few = cycles // 10
    with SimulatedLine(options.panelhost) as line:
        short, long = (processor_seconds(master(options, line.device, *dense_set(number)))
                       for number in (few, few + cycles))
    return 1e6 * (long - short) / (cycles * VARIABLES)


def report_processor_time(options):
    single, groups = (10, 100) if options.brief else (20, 1000)
    ours, one_each, in_groups = measurement.in_turn(
        options.samples,
        *(functools.partial(microseconds_per_variable, options, master, cycles)
          for master, cycles in ((driver, groups), (libmodbus, single), (grouped, groups))))
    title = "processor time per variable, read once"
    measurement.report("line-time-single", title, "us", ours, one_each, ONE_EACH)
    measurement.report("line-time-grouped", title, "us", ours, in_groups, GROUPED)


# --- System calls and instructions ---

def counts(options, command_for):
    """Yields the counts of two runs, the second one twice as long, and the number of requests that the PLC
    received. `command_for(device, times)` returns the command of a master."""
    for times in (1, 2):
        with SimulatedLine(options.panelhost) as line:
            found = counted(command_for(line.device, times))
        yield found, len(line.capture.arrivals())


def per_exchange_and_variable(options, master, cycles):
    (few, few_requests), (more, more_requests) = counts(
        options, lambda device, times: master(options, device, *dense_set(times * cycles)))
    return ((more.calls - few.calls) / (more_requests - few_requests),
            (more.instructions - few.instructions) / (cycles * VARIABLES))


def calls_of_host(options):
    with tempfile.TemporaryDirectory() as folder:
        def poll(device, times):
            file = pathlib.Path(folder, "poll.toml")
            file.write_text(POLL_FILE.format(device=device), encoding="utf-8")
            return [options.panelhost, "poll", file, "--lines", "--cycles", str(100 * times)]

        (few, few_requests), (more, more_requests) = counts(options, poll)
    return (more.calls - few.calls) / (more_requests - few_requests)


def instructions_per_exchange(options, master, registers):
    cycles = 100
    (few, _), (more, _) = counts(options, lambda device, times: master(
        options, device, "--registers", registers, "--cycles", times * cycles))
    return (more.instructions - few.instructions) / cycles


def report_exchanges(options):
    for registers, noun in ((1, "register"), (125, "registers")):
        ours, peer = measurement.in_turn(
            1 if options.brief else 2,
            *(functools.partial(instructions_per_exchange, options, master, registers)
              for master in (driver, libmodbus)))
        measurement.report(f"line-exchange-{registers}",
                           f"one exchange of {registers} {noun} and GetRegisterData", "instructions",
                           ours, peer, "libmodbus")


def report_counts(options):
    *masters, host = measurement.in_turn(
        1 if options.brief else 2,
        *(functools.partial(per_exchange_and_variable, options, master, cycles)
          for master, cycles in ((driver, 10), (libmodbus, 1), (grouped, 10))),
        functools.partial(calls_of_host, options))
    (calls, instructions), (peer_calls, one_each), (_, in_groups) = (list(zip(*samples)) for samples in masters)
    measurement.report("line-calls", "one exchange", "system calls", calls, peer_calls, "libmodbus")
    measurement.report("line-calls-host", "one exchange of the reference host", "system calls", host, peer_calls,
                       "libmodbus")
    title = "one variable, read once, in user space"
    measurement.report("line-instructions-single", title, "instructions", instructions, one_each, ONE_EACH)
    measurement.report("line-instructions-grouped", title, "instructions", instructions, in_groups, GROUPED)


def main():
    options = measurement.parse(__doc__)
    report_rates(options)
    report_processor_time(options)
    report_counts(options)
    report_exchanges(options)


if __name__ == "__main__":
    measurement.finish(main)
