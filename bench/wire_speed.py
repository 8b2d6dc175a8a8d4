#!/usr/bin/python3
"""Measures the reference host at wire speed: `panelhost poll` on a simulated PLC that paces its bytes, compared
with a bare master that only writes, polls, reads and keeps the silent interval.

Prints one JSON object per line. Up to 19,200 baud: exchanges per second as a share of what the wire allows,
1/T, where T is the time of request, reply and two silent intervals. At 115,200 baud: milliseconds per exchange
that the host loses compared with the bare master. The rate is computed from the times that the PLC recorded.
The measurement fails if a share is above 100 %, or if the bare master receives a reply sooner than the wire
allows.
"""
import functools
import pathlib
import sys
import tempfile

sys.dont_write_bytecode = True  # keep __pycache__ out of the source tree
import measurement
from simulated_line import SimulatedLine, run

# If the machine delays the simulated PLC, the bare master waits one second for the next byte. The host gets the
# same timeout.
POLL_FILE = """[[link]]
name = "line"
device = "{device}"
baud = {baud}
timeout = 1000
byteTimeout = 1000
maxRegs = 125
[[link.variable]]
name = "block"
kind = "holding word"
address = 0
count = {registers}
"""


class Line:
    """The duration of an exchange on a line, in seconds."""

    def __init__(self, baud, registers):
        self.baud, self.registers = baud, registers
        self.character = 11 / baud
        self.silence = 3.5 * self.character if baud <= 19200 else 0.00175
        self.frames = (8 + 5 + 2 * registers) * self.character
        self.exchange = self.frames + 2 * self.silence
        self.least_reply = self.frames + 3.5 * self.character  # earliest arrival of the last byte


def microseconds(seconds):
    return str(int(1e6 * seconds))


def period_of_host(options, line, cycles):
    with SimulatedLine(options.panelhost, line.baud) as plc, tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder, "poll.toml")
        file.write_text(POLL_FILE.format(device=plc.device, **vars(line)), encoding="utf-8")
        run([options.panelhost, "poll", file, "--lines", "--cycles", str(cycles)])
    return plc.capture.period(line.registers)


def period_of_bare_master(options, line, cycles):
    with SimulatedLine(options.panelhost, line.baud) as plc:
        run([options.master_bare, plc.device, "--registers", str(line.registers), "--cycles", str(cycles),
             "--silence", microseconds(line.silence), "--least-time", microseconds(line.least_reply)])
    return plc.capture.period(line.registers)


def periods(options, line, seconds):
    """Returns the periods of the host and of the bare master, taken in turn."""
    cycles = max(6, round(seconds / line.exchange))
    return measurement.in_turn(options.samples,
                               *(functools.partial(period, options, line, cycles)
                                 for period in (period_of_host, period_of_bare_master)))


def shares(line, measured):
    found = [100 * line.exchange / period for period in measured]
    if max(found) > 100:
        raise RuntimeError(f"{max(found):.3f} % of what {line.baud} baud allows: "
                           "the simulated line is faster than its baud rate")
    return found


def report_share(options, line, seconds):
    host, bare = (shares(line, measured) for measured in periods(options, line, seconds))
    measurement.report(f"line-share-{line.baud}-{line.registers}",
                       f"{line.baud:,} baud, {line.registers} registers: share of the wire speed", "%",
                       host, bare, "bare master")


def report_loss(options, line, seconds):
    host, bare = periods(options, line, seconds)
    measurement.report(f"line-loss-{line.baud}-{line.registers}",
                       f"{line.baud:,} baud, {line.registers} registers: loss per exchange", "ms",
                       [1000 * (one - other) for one, other in zip(host, bare)])


def main():
    options = measurement.parse(__doc__)
    seconds = 0.3 if options.brief else 2
    for baud in (9600, 19200):
        for registers in (32, 125):
            report_share(options, Line(baud, registers), seconds)
    for registers in (32, 125):
        report_loss(options, Line(115200, registers), seconds)


if __name__ == "__main__":
    measurement.finish(main)
